#pragma once

#include <windows.h>

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/win32/gui/direct2d_graphics.h"
#include "platform/window.h"

namespace Platform::Win32 {

/// A window of the system. Messages become events in its procedure; what the program does with them
/// happens outside of it.
class Win32Window final : public NativeWindow {
public:
    /// Fails with the system's reason. The graphics outlive the window.
    static Created<NativeWindow> Open(const WindowSpec& spec, Direct2DGraphics& graphics);
    ~Win32Window() override;
    Win32Window(const Win32Window&) = delete;
    Win32Window& operator=(const Win32Window&) = delete;

    bool NextEvent(Event& event) override;
    void Wake() override { Post({.type = EventType::Wake}); }
    void RequestClose() override { Post({.type = EventType::Close}); }
    bool Exists() const override { return window_ != nullptr; }
    void Destroy() override;
    Created<DrawTarget> CreateTarget(SurfaceKind surface, DeviceKind device) override;
    void MakeBorderless() override;
    void SetRoundedRegion(int cornerSize) override;
    void MakeLayered() override;
    void ShowTopmost() override;
    void Show() override { ShowWindow(window_, SW_SHOW); }
    void Hide() override { ShowWindow(window_, SW_HIDE); }
    void Minimize() override { ShowWindow(window_, SW_MINIMIZE); }
    void Restore() override { ShowWindow(window_, SW_RESTORE); }
    bool IsVisible() const override { return IsWindowVisible(window_) != FALSE; }
    bool IsMinimized() const override { return IsIconic(window_) != FALSE; }
    bool IsForeground() const override;
    void Activate() override { SetForegroundWindow(window_); }
    void BringToForeground() override;
    Rect GetFrameRect() const override;
    Size GetClientSize() const override;
    void MoveTo(Point position) override;
    void SetTrackLimits(Size smallest, Size largest) override;
    std::uint32_t GetDpi() const override;
    void SetCursor(CursorShape shape) override;
    void SetCapture() override;
    void ReleaseCapture() override;
    Point GetCursorPosition() const override;

private:
    explicit Win32Window(Direct2DGraphics& graphics) : graphics_(graphics) {}

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    /// None leaves the message to the system.
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT OnPaint();
    void OnSize(WPARAM how, LPARAM size);
    void OnPointerLeft();
    void OnCaptureChanged(LPARAM taker);
    /// After a capture: tells that the pointer is elsewhere, if it is.
    void LookForPointer();
    void LimitTracking(MINMAXINFO& limits) const;
    /// Lets the system tell when the pointer leaves.
    void WatchPointer();
    bool IsUnderPointer() const;
    void Post(const Event& event);

    Direct2DGraphics& graphics_;
    std::atomic<HWND> window_ = nullptr;
    std::mutex mutex_;  ///< guards queue_
    std::deque<Event> queue_;
    std::atomic<int> cornerSize_ = 0;
    HCURSOR cursor_ = nullptr;
    Size lastSize_;
    bool isIcon_ = false;
    bool watching_ = false;
    bool captured_ = false;
    Size smallest_;
    Size largest_;
};

}  // namespace Platform::Win32
