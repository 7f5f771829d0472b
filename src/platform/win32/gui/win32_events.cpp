#include "platform/win32/gui/win32_events.h"

#include <windowsx.h>

namespace Platform::Win32 {

namespace {

std::uint8_t Modifiers() {
    int bits = 0;
    const auto held = [](int key) { return GetKeyState(key) < 0; };
    if (held(VK_CONTROL)) bits |= ModifierControl;
    if (held(VK_MENU)) bits |= ModifierAlt;
    if (held(VK_SHIFT)) bits |= ModifierShift;
    return static_cast<std::uint8_t>(bits);
}

Event PointerEvent(EventType type, WPARAM held, LPARAM place) {
    int bits = 0;
    if (held & MK_LBUTTON) bits |= HeldLeft;
    if (held & MK_RBUTTON) bits |= HeldRight;
    return {.type = type,
            .buttons = static_cast<std::uint8_t>(bits),
            .point = {GET_X_LPARAM(place), GET_Y_LPARAM(place)}};
}

Event WheelEvent(HWND window, WPARAM turned, LPARAM place) {
    POINT point{GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    ScreenToClient(window, &point);
    return {.type = EventType::Wheel,
            .modifiers = Modifiers(),
            .wheelDelta = GET_WHEEL_DELTA_WPARAM(turned),
            .point = {point.x, point.y}};
}

Event KeyEvent(EventType type, WPARAM key) {
    return {.type = type, .modifiers = Modifiers(), .key = static_cast<std::uint16_t>(key)};
}

}  // namespace

std::optional<Event> TranslateInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_MOUSEMOVE:
            return PointerEvent(EventType::PointerMove, wParam, lParam);
        case WM_LBUTTONDOWN:
            return PointerEvent(EventType::LeftDown, wParam, lParam);
        case WM_LBUTTONUP:
            return PointerEvent(EventType::LeftUp, wParam, lParam);
        case WM_RBUTTONDOWN:
            return PointerEvent(EventType::RightDown, wParam, lParam);
        case WM_RBUTTONUP:
            return PointerEvent(EventType::RightUp, wParam, lParam);
        case WM_MOUSEWHEEL:
            return WheelEvent(window, wParam, lParam);
        case WM_KEYDOWN:
            return KeyEvent(EventType::KeyDown, wParam);
        case WM_KEYUP:
            return KeyEvent(EventType::KeyUp, wParam);
        case WM_CHAR:
            return Event{.type = EventType::Character,
                         .modifiers = Modifiers(),
                         .character = static_cast<wchar_t>(wParam)};
        default:
            return std::nullopt;
    }
}

}  // namespace Platform::Win32
