#include "platform/host/gui/x_pointer.h"

#include <SDL2/SDL_syswm.h>
#include <X11/Xlib.h>
#include <optional>

#include "platform/host/gui/xlib_parts.h"

namespace Platform::Host {

namespace {

constexpr int WheelNotch = 120;

::Display* DisplayOf(SDL_Window* window) {
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version);
    const bool isX11 = SDL_GetWindowWMInfo(window, &info) && info.subsystem == SDL_SYSWM_X11;
    return isX11 ? info.info.x11.display : nullptr;
}

std::uint8_t Modifiers(unsigned state) {
    int bits = 0;
    if (state & ControlMask) bits |= ModifierControl;
    if (state & Mod1Mask) bits |= ModifierAlt;
    if (state & ShiftMask) bits |= ModifierShift;
    return static_cast<std::uint8_t>(bits);
}

/// The state in a button's event is the one before it.
std::optional<Event> TranslateButton(const XButtonEvent& button) {
    const bool down = button.type == ButtonPress;
    const Point point{button.x, button.y};
    const auto event = [&](EventType type, unsigned mask) {
        const unsigned state = down ? button.state | mask : button.state & ~mask;
        return Event{.type = type, .buttons = HeldButtons(state), .point = point};
    };
    switch (button.button) {
        case Button1:
            return event(down ? EventType::LeftDown : EventType::LeftUp, Button1Mask);
        case Button3:
            return event(down ? EventType::RightDown : EventType::RightUp, Button3Mask);
        case Button4:
        case Button5:
            if (!down) return std::nullopt;
            return Event{.type = EventType::Wheel,
                         .modifiers = Modifiers(button.state),
                         .wheelDelta = button.button == Button4 ? WheelNotch : -WheelNotch,
                         .point = point};
        default:
            return std::nullopt;
    }
}

std::optional<Event> Translate(const XEvent& event, bool captured) {
    switch (event.type) {
        case MotionNotify:
            return Event{.type = EventType::PointerMove,
                         .buttons = HeldButtons(event.xmotion.state),
                         .point = {event.xmotion.x, event.xmotion.y}};
        case ButtonPress:
        case ButtonRelease:
            return TranslateButton(event.xbutton);
        case LeaveNotify:
            // Another program's grab, such as the window manager's look at each press, is no leave.
            if (captured || event.xcrossing.mode == NotifyGrab) return std::nullopt;
            return Event{.type = EventType::PointerLeave};
        default:
            return std::nullopt;
    }
}

}  // namespace

std::uint8_t HeldButtons(unsigned state) {
    int bits = 0;
    if (state & Button1Mask) bits |= HeldLeft;
    if (state & Button3Mask) bits |= HeldRight;
    return static_cast<std::uint8_t>(bits);
}

void TakePointer(SDL_Window* window) {
    ::Display* display = DisplayOf(window);
    XWindowAttributes attributes;
    if (!display || !XGetWindowAttributes(display, XWindowOf(window), &attributes)) return;
    XSelectInput(display, XWindowOf(window), attributes.your_event_mask & ~EnterWindowMask);
    SDL_EventState(SDL_SYSWMEVENT, SDL_ENABLE);
}

void TranslatePointer(const SDL_Event& event, SDL_Window* window, bool captured,
                      std::deque<Event>& queue) {
    if (event.type != SDL_SYSWMEVENT || event.syswm.msg->subsystem != SDL_SYSWM_X11) return;
    const XEvent& told = event.syswm.msg->msg.x11.event;
    if (told.xany.window != XWindowOf(window)) return;
    if (const auto translated = Translate(told, captured)) queue.push_back(*translated);
}

void GrabPointer(SDL_Window* window) {
    ::Display* display = DisplayOf(window);
    if (!display) return;
    XGrabPointer(display, XWindowOf(window), False,
                 ButtonPressMask | ButtonReleaseMask | PointerMotionMask, GrabModeAsync,
                 GrabModeAsync, None, None, CurrentTime);
}

void LetPointerGo(SDL_Window* window) {
    ::Display* display = DisplayOf(window);
    if (!display) return;
    XUngrabPointer(display, CurrentTime);
    XFlush(display);
}

}  // namespace Platform::Host
