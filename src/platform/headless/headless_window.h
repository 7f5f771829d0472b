#pragma once

#include <atomic>
#include <deque>
#include <mutex>

#include "platform/desktop.h"

namespace Platform {

/// A window that nobody sees. It keeps what it is told, puts the events of its own calls into the
/// queue as a window system would, and takes others from Push and from the helpers below.
class HeadlessWindow final : public NativeWindow {
public:
    HeadlessWindow(Graphics& graphics, const WindowSpec& spec);

    bool NextEvent(Event& event) override;
    void Wake() override { Push({.type = EventType::Wake}); }
    void RequestClose() override { Push({.type = EventType::Close}); }
    bool Exists() const override { return exists_; }
    void Destroy() override;
    Created<DrawTarget> CreateTarget(SurfaceKind surface, DeviceKind device) override;
    void MakeBorderless() override {}
    void SetRoundedRegion(int cornerSize) override { cornerSize_ = cornerSize; }
    void MakeLayered() override { layered = true; }
    void ShowTopmost() override;
    void Show() override;
    void Hide() override;
    void Minimize() override;
    void Restore() override;
    bool IsVisible() const override { return visible_; }
    bool IsMinimized() const override { return minimized_; }
    bool IsForeground() const override { return foreground_; }
    void Activate() override { BringToForeground(); }
    void BringToForeground() override { foreground_ = true; }
    Rect GetFrameRect() const override;
    Size GetClientSize() const override;
    void MoveTo(Point position) override;
    void SetTrackLimits(Size, Size) override {}
    std::uint32_t GetDpi() const override { return dpi; }
    void SetCursor(CursorShape shape) override { cursor = shape; }
    void SetCapture() override { captured = true; }
    void ReleaseCapture() override { captured = false; }
    Point GetCursorPosition() const override;

    // The other side: what the world does to the window. Any thread.

    void Push(const Event& event);
    /// The pointer and its buttons, in client pixels.
    void PointerMove(int x, int y);
    void PointerLeave();
    void LeftDown(int x, int y);
    void LeftUp(int x, int y);
    void RightDown(int x, int y);
    void RightUp(int x, int y);
    void Click(int x, int y);
    void Turn(int x, int y, int wheelDelta, std::uint8_t modifiers = 0);
    void Press(int key, std::uint8_t modifiers = 0);
    /// A Character for each unit of the text.
    void Type(std::wstring_view text, std::uint8_t modifiers = 0);
    void Resize(int width, int height);
    /// Another window takes the capture.
    void StealCapture();
    /// The window goes without a call of the program's.
    void DestroyFromOutside();
    /// Becomes or stops being an icon without an event.
    void SetMinimizedSilently(bool minimized) { minimized_ = minimized; }
    /// The next calls of CreateTarget fail, so many of them.
    void FailTargets(int count) { failingTargets_ = count; }

    // What the program last asked for.
    std::uint32_t dpi = 96;
    CursorShape cursor = CursorShape::Arrow;
    bool captured = false;
    bool layered = false;
    bool topmost = false;
    int targetsAsked = 0;
    DeviceKind lastDevice = DeviceKind::Hardware;

private:
    void PushPointer(EventType type, int x, int y, int press = 0, int release = 0);

    Graphics& graphics_;
    mutable std::mutex mutex_;  ///< guards what stands below up to size_
    std::deque<Event> queue_;
    Point pointer_{-1, -1};
    std::uint8_t buttons_ = 0;
    Point position_;
    Size size_;

    int cornerSize_ = 0;
    std::atomic<bool> exists_ = true;
    std::atomic<bool> minimized_ = false;
    std::atomic<int> failingTargets_ = 0;
    bool visible_ = false;
    bool foreground_ = false;
};

}  // namespace Platform
