#include "platform/desktop.h"

#include <windows.h>

#include <timeapi.h>

#include "platform/system_time_source.h"
#include "platform/win32/gui/win32_clipboard.h"
#include "platform/win32/gui/win32_window.h"

// The system's header has a macro of this name.
#undef OpenDesktop

namespace Platform {

namespace Win32 {

namespace {

class Screens final : public Display {
public:
    Size DesktopSize() override {
        return {GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    }

    std::vector<Size> ListModes() override {
        std::vector<Size> modes;
        DEVMODEW mode{};
        mode.dmSize = sizeof mode;
        for (DWORD number = 0; EnumDisplaySettingsW(nullptr, number, &mode); ++number)
            modes.push_back(
                {static_cast<int>(mode.dmPelsWidth), static_cast<int>(mode.dmPelsHeight)});
        return modes;
    }
};

class FineTimeSource final : public SystemTimeSource {
public:
    void SetFineSleep(bool fine) override {
        if (fine)
            timeBeginPeriod(1);
        else
            timeEndPeriod(1);
    }
};

class Win32Desktop final : public Desktop {
public:
    Created<NativeWindow> OpenWindow(const WindowSpec& spec) override {
        return Win32Window::Open(spec, graphics_);
    }
    Clipboard& GetClipboard() override { return clipboard_; }
    Display& GetDisplay() override { return screens_; }
    Graphics& GetGraphics() override { return graphics_; }
    TimeSource& GetTimeSource() override { return timeSource_; }

private:
    Direct2DGraphics graphics_;
    Win32Clipboard clipboard_;
    Screens screens_;
    FineTimeSource timeSource_;
};

}  // namespace

}  // namespace Win32

std::unique_ptr<Desktop> OpenDesktop() {
    return std::make_unique<Win32::Win32Desktop>();
}

}  // namespace Platform
