#pragma once

#include "platform/desktop.h"
#include "platform/host/gui/cairo_graphics.h"
#include "platform/system_time_source.h"

namespace Platform::Host {

/// The desktop of an X11 display. Without one there are no windows, no modes and no clipboard.
class SdlDesktop final : public Desktop, private Clipboard, private Display {
public:
    SdlDesktop();

    Created<NativeWindow> OpenWindow(const WindowSpec& spec) override;
    Clipboard& GetClipboard() override { return *this; }
    Display& GetDisplay() override { return *this; }
    Graphics& GetGraphics() override { return graphics_; }
    TimeSource& GetTimeSource() override { return timeSource_; }

private:
    std::optional<std::wstring> ReadText() override;
    bool WriteText(const std::wstring& text) override;
    Size DesktopSize() override;
    std::vector<Size> ListModes() override;

    CairoGraphics graphics_;
    SystemTimeSource timeSource_;
    bool started_ = false;
};

}  // namespace Platform::Host
