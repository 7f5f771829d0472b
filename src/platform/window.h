#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/created.h"
#include "platform/cursor.h"
#include "platform/drawing.h"
#include "platform/events.h"
#include "platform/geometry.h"

namespace Platform {

struct WindowSpec {
    std::wstring title;
    int x = 0;  ///< desktop pixels of the frame's top-left corner
    int y = 0;
    int width = 0;  ///< of the whole window, frame included
    int height = 0;
};

/// Opaque windows are square and black where nothing is drawn; layered ones take the frame's
/// alpha, pixel by pixel.
enum class SurfaceKind : std::uint8_t { Opaque, Layered };
/// Software is the fallback for a machine whose graphics device does not work.
enum class DeviceKind : std::uint8_t { Hardware, Software };

/// One top-level window. It is opened hidden, with an ordinary frame. Calls come from the message
/// thread, the one that opened it, unless the call says otherwise; none of them runs the program's
/// code: what they cause arrives in the queue.
class NativeWindow {
public:
    /// Destroys the window.
    virtual ~NativeWindow() = default;

    /// Takes the next event of the queue, letting the window system deliver first. False when the
    /// queue is empty; never waits.
    virtual bool NextEvent(Event& event) = 0;
    /// Puts a Wake event into the queue. Any thread, also after the window has gone.
    virtual void Wake() = 0;
    /// Puts a Close event into the queue, as the system's close button would. Any thread.
    virtual void RequestClose() = 0;

    /// False once the window has been destroyed, by Destroy or from outside. Any thread.
    virtual bool Exists() const = 0;
    virtual void Destroy() = 0;

    /// A new drawing surface of the client's present size (at least 1 by 1). The earlier one must
    /// be gone. Any thread that holds the toolkit's lock.
    virtual Created<DrawTarget> CreateTarget(SurfaceKind surface, DeviceKind device) = 0;

    /// Takes the frame, caption and system menu away and keeps the taskbar button and the
    /// possibility to minimise. The client area then has the size of the window.
    virtual void MakeBorderless() = 0;
    /// Cuts the window to a rounded rectangle of its client size; cornerSize is the width and
    /// height of the ellipse at a corner, in pixels. Where the window system blends pixel by
    /// pixel the drawing's own alpha may do it.
    virtual void SetRoundedRegion(int cornerSize) = 0;
    /// Prepares the window for targets of SurfaceKind::Layered.
    virtual void MakeLayered() = 0;
    /// Keeps the window above others, and shows it.
    virtual void ShowTopmost() = 0;

    virtual void Show() = 0;
    virtual void Hide() = 0;
    virtual void Minimize() = 0;
    virtual void Restore() = 0;
    virtual bool IsVisible() const = 0;
    /// Any thread.
    virtual bool IsMinimized() const = 0;
    virtual bool IsForeground() const = 0;
    /// Asks for the place in front and the keyboard. The system may refuse it to a program that the
    /// user has turned away from.
    virtual void Activate() = 0;
    /// As Activate, also past the program in front, as far as the system lets a program do that.
    virtual void BringToForeground() = 0;

    /// The frame's rectangle on the desktop.
    virtual Rect GetFrameRect() const = 0;
    virtual Size GetClientSize() const = 0;
    /// Moves the frame's corner without resizing, raising or activating.
    virtual void MoveTo(Point position) = 0;
    /// Limits for resizing by the user; a zero size is no limit.
    virtual void SetTrackLimits(Size smallest, Size largest) = 0;
    /// Dots per inch of the window's screen, 0 when unknown.
    virtual std::uint32_t GetDpi() const = 0;

    /// The shape over the client area, from now on.
    virtual void SetCursor(CursorShape shape) = 0;
    /// All pointer events come here until ReleaseCapture, also from outside the window. Nesting
    /// does not count: one release ends it, and without a capture does nothing.
    virtual void SetCapture() = 0;
    virtual void ReleaseCapture() = 0;
    /// The pointer's place on the desktop.
    virtual Point GetCursorPosition() const = 0;
};

}  // namespace Platform
