#include "platform/headless/headless_desktop.h"

namespace Platform {

Created<NativeWindow> HeadlessDesktop::OpenWindow(const WindowSpec& spec) {
    if (refuseWindow) return GraphicsFailed;
    auto window = std::make_unique<HeadlessWindow>(graphics_, spec);
    window_ = window.get();
    return window;
}

}  // namespace Platform
