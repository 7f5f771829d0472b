#include "platform/host/gui/xlib_parts.h"

#include <SDL2/SDL_syswm.h>
#include <X11/Xlib.h>

namespace Platform::Host {

namespace {

int IgnoreError(::Display*, XErrorEvent*) {
    return 0;
}

bool Ask(SDL_Window* window, SDL_SysWMinfo& info) {
    SDL_VERSION(&info.version);
    return SDL_GetWindowWMInfo(window, &info) && info.subsystem == SDL_SYSWM_X11;
}

}  // namespace

void KeepRunningOnXErrors() {
    XSetErrorHandler(IgnoreError);
}

std::uint32_t XWindowOf(SDL_Window* window) {
    SDL_SysWMinfo info;
    return Ask(window, info) ? static_cast<std::uint32_t>(info.info.x11.window) : 0;
}

int XDescriptorOf(SDL_Window* window) {
    SDL_SysWMinfo info;
    return Ask(window, info) ? ConnectionNumber(info.info.x11.display) : -1;
}

bool HasReadXEvents(SDL_Window* window) {
    SDL_SysWMinfo info;
    return Ask(window, info) && XEventsQueued(info.info.x11.display, QueuedAlready) > 0;
}

}  // namespace Platform::Host
