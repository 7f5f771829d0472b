#include "platform/host/gui/sdl_desktop.h"

#include <SDL2/SDL.h>
#include <cstdlib>
#include <memory>

#include "platform/host/gui/sdl_window.h"
#include "platform/host/gui/xlib_parts.h"
#include "platform/text.h"

namespace Platform::Host {

namespace {

struct FreeSdl {
    void operator()(char* text) const { SDL_free(text); }
};

}  // namespace

SdlDesktop::SdlDesktop() {
    // Without a display SDL would take a driver that shows nothing.
    SDL_SetHint(SDL_HINT_VIDEODRIVER, "x11");
    // No OpenGL behind the window: it has no alpha and takes a hundred megabytes.
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    SDL_SetHint(SDL_HINT_MOUSE_AUTO_CAPTURE, "0");
    SDL_SetMainReady();
    started_ = std::getenv("DISPLAY") != nullptr && SDL_InitSubSystem(SDL_INIT_VIDEO) == 0;
    // It is never ended: SDL would wait for ever on a window that somebody else has destroyed.
    if (!started_) return;
    KeepRunningOnXErrors();
    SDL_EnableScreenSaver();
    SDL_StartTextInput();
}

Created<NativeWindow> SdlDesktop::OpenWindow(const WindowSpec& spec) {
    if (!started_) return GraphicsNotSupported;
    return SdlWindow::Open(spec);
}

std::optional<std::wstring> SdlDesktop::ReadText() {
    if (!started_ || !SDL_HasClipboardText()) return std::nullopt;
    const std::unique_ptr<char, FreeSdl> text(SDL_GetClipboardText());
    if (!text) return std::nullopt;
    return WideFromUtf8(text.get());
}

bool SdlDesktop::WriteText(const std::wstring& text) {
    return started_ && SDL_SetClipboardText(Utf8FromWide(text).c_str()) == 0;
}

Size SdlDesktop::DesktopSize() {
    SDL_DisplayMode mode{};
    if (!started_ || SDL_GetDesktopDisplayMode(0, &mode) != 0) return {};
    return {mode.w, mode.h};
}

std::vector<Size> SdlDesktop::ListModes() {
    std::vector<Size> modes;
    const int count = started_ ? SDL_GetNumDisplayModes(0) : 0;
    for (int i = 0; i < count; ++i) {
        SDL_DisplayMode mode{};
        if (SDL_GetDisplayMode(0, i, &mode) == 0) modes.push_back({mode.w, mode.h});
    }
    return modes;
}

}  // namespace Platform::Host
