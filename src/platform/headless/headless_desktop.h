#pragma once

#include "platform/desktop.h"
#include "platform/headless/headless_window.h"

namespace Platform {

/// A desktop without screen and user: one headless window, a clipboard and displays in memory,
/// with the drawing and the clock that it is given.
class HeadlessDesktop : public Desktop {
public:
    /// Both have to outlive the desktop.
    HeadlessDesktop(Graphics& graphics, TimeSource& timeSource)
        : graphics_(graphics), timeSource_(timeSource) {}

    Created<NativeWindow> OpenWindow(const WindowSpec& spec) override;
    Clipboard& GetClipboard() override { return clipboard; }
    Display& GetDisplay() override { return display; }
    Graphics& GetGraphics() override { return graphics_; }
    TimeSource& GetTimeSource() override { return timeSource_; }

    /// The window that is open; it belongs to whoever opened it.
    HeadlessWindow* Window() const { return window_; }

    struct MemoryClipboard final : Clipboard {
        std::optional<std::wstring> ReadText() override { return busy ? std::nullopt : text; }
        bool WriteText(const std::wstring& value) override {
            if (!busy) text = value;
            return !busy;
        }
        std::optional<std::wstring> text;
        bool busy = false;
    } clipboard;

    struct FixedDisplay final : Display {
        Size DesktopSize() override { return modes.back(); }
        std::vector<Size> ListModes() override { return modes; }
        std::vector<Size> modes{{800, 600}, {1280, 720}, {1920, 1080}};
    } display;

    /// The next OpenWindow fails.
    bool refuseWindow = false;

private:
    Graphics& graphics_;
    TimeSource& timeSource_;
    HeadlessWindow* window_ = nullptr;
};

}  // namespace Platform
