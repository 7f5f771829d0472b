#include "platform/desktop.h"

#include <cstdlib>
#include <string_view>

#include "platform/headless/headless_desktop.h"
#include "platform/host/gui/cairo_graphics.h"
#include "platform/host/gui/sdl_desktop.h"
#include "platform/system_time_source.h"

namespace Platform {

namespace {

/// The parts that a headless desktop refers to, made before it and gone after it.
struct UnseenParts {
    Host::CairoGraphics graphics;
    SystemTimeSource timeSource;
};

class UnseenDesktop final : UnseenParts, public HeadlessDesktop {
public:
    UnseenDesktop() : HeadlessDesktop(graphics, timeSource) {}
};

}  // namespace

std::unique_ptr<Desktop> OpenDesktop() {
    const char* wanted = std::getenv("TOLVAN_WINDOW");
    const bool unseen =
        std::getenv("DISPLAY") == nullptr || (wanted && wanted == std::string_view("none"));
    if (unseen) return std::make_unique<UnseenDesktop>();
    return std::make_unique<Host::SdlDesktop>();
}

}  // namespace Platform
