#pragma once

#include <SDL2/SDL_mouse.h>
#include <SDL2/SDL_video.h>
#include <array>
#include <atomic>
#include <deque>
#include <memory>
#include <mutex>

#include "platform/host/gui/xcb_presenter.h"
#include "platform/window.h"

namespace Platform::Host {

/// A window of SDL on X11. Its pixels go over a connection of our own.
class SdlWindow final : public NativeWindow {
public:
    /// Null when the window system refuses. The video part of SDL has to stand.
    static std::unique_ptr<SdlWindow> Open(const WindowSpec& spec);
    ~SdlWindow() override;

    bool NextEvent(Event& event) override;
    void Wake() override;
    void RequestClose() override;
    bool Exists() const override { return exists_; }
    void Destroy() override;
    Created<DrawTarget> CreateTarget(SurfaceKind surface, DeviceKind device) override;
    void MakeBorderless() override;
    void SetRoundedRegion(int cornerSize) override;
    void MakeLayered() override;
    void ShowTopmost() override;
    void Show() override;
    void Hide() override;
    void Minimize() override;
    void Restore() override;
    bool IsVisible() const override;
    bool IsMinimized() const override { return minimized_; }
    bool IsForeground() const override;
    void Activate() override { BringToForeground(); }
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
    SdlWindow(SDL_Window* window, xcb_window_t id, int depth, Size size);
    void Post(EventType type);
    void Pump();
    /// Whether the window system may have something to tell. The message loop asks a thousand
    /// times a second, so it has to cost next to nothing.
    bool HasNews();
    /// Looks whether somebody else has destroyed the window, and whether the pointer has come in.
    void Watch(std::deque<Event>& events);
    /// Tells where the pointer is, if it is in the window.
    void AddPointer(std::deque<Event>& events);
    void FollowEvent(const Event& event);
    void CutShape();
    /// Gives the window the other shape when a compositor has come or gone.
    void FollowCompositor();

    struct DestroyCursor {
        void operator()(SDL_Cursor* cursor) const { SDL_FreeCursor(cursor); }
    };

    SDL_Window* window_;
    const xcb_window_t id_;
    XConnection watch_;  ///< of the message thread
    XcbPresenter presenter_;
    std::array<std::unique_ptr<SDL_Cursor, DestroyCursor>, 3> cursors_;
    mutable std::mutex mutex_;  ///< guards queue_ and clientSize_
    std::deque<Event> queue_;
    Size clientSize_;
    std::atomic<bool> exists_ = true;
    std::atomic<bool> minimized_ = false;
    bool layered_ = false;
    bool captured_ = false;
    bool composited_ = false;  ///< when the shape was cut
    bool shown_ = false;
    std::uint64_t lastPump_ = 0;  ///< in ticks
    std::uint64_t lastLook_ = 0;  ///< for a compositor, in ticks
    int cornerSize_ = 0;
};

}  // namespace Platform::Host
