#include "platform/host/gui/cairo_graphics.h"

#include "platform/host/gui/cairo_target.h"

namespace Platform {

namespace Host {

Created<DrawTarget> CairoGraphics::CreateOffscreenTarget(Size size) {
    auto target = std::make_unique<CairoTarget>(size, nullptr);
    if (!target->IsValid()) return GraphicsOutOfMemory;
    return target;
}

}  // namespace Host

std::unique_ptr<Graphics> OpenGraphics() {
    return std::make_unique<Host::CairoGraphics>();
}

}  // namespace Platform
