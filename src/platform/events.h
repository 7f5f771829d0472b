#pragma once

#include <cstdint>

#include "platform/geometry.h"

/// What the window system tells a window, in one shape for every platform. The adapter turns
/// native messages into these at the border and keeps them in a queue; nothing above it sees a
/// native type, and nothing above it is ever called from inside a native call.
namespace Platform {

enum class EventType : std::uint8_t {
    Wake,          ///< carries nothing: somebody called NativeWindow::Wake
    Close,         ///< the user or the system asks; the window stays until Destroy
    Destroyed,     ///< the window has gone, by Destroy or from outside; the last event
    Resized,       ///< size: the new client size; also after a restore from minimised
    Minimized,     ///< the window has become an icon
    Exposed,       ///< the window system wants the content shown again
    PointerMove,   ///< point, buttons
    PointerLeave,  ///< the pointer left the client area and nothing captures it
    LeftDown,      ///< point, buttons
    LeftUp,        ///< point, buttons
    RightDown,     ///< point, buttons
    RightUp,       ///< point, buttons
    CaptureLost,   ///< the capture ended without a call of ours: another window took it
    Wheel,         ///< point, wheelDelta, modifiers
    KeyDown,       ///< key, modifiers; repeated while the key is held
    KeyUp,         ///< key, modifiers
    Character,     ///< character, modifiers; follows the KeyDown that made it
};

/// Bits of Event::modifiers. A key that types with both (AltGr on Windows) shows both.
enum Modifier : std::uint8_t { ModifierControl = 1, ModifierAlt = 2, ModifierShift = 4 };

/// Bits of Event::buttons: what is held after the event.
enum HeldButton : std::uint8_t { HeldLeft = 1, HeldRight = 2 };

/// Keys by their Windows numbers; letters and digits are their upper-case ASCII codes. Other
/// numbers may occur; a key that has none is 0.
enum Key : std::uint16_t {
    KeyBackspace = 0x08,
    KeyTab = 0x09,
    KeyReturn = 0x0D,
    KeyEscape = 0x1B,
    KeyEnd = 0x23,
    KeyHome = 0x24,
    KeyLeft = 0x25,
    KeyUpArrow = 0x26,
    KeyRight = 0x27,
    KeyDownArrow = 0x28,
    KeyDelete = 0x2E,
};

/// One event. The fields that its type does not name stay zero.
struct Event {
    EventType type = EventType::Wake;
    std::uint8_t modifiers = 0;
    std::uint8_t buttons = 0;
    std::uint16_t key = 0;
    /// A unit of wide text: on Windows a character beyond the first plane comes as two events.
    /// Control characters come too.
    wchar_t character = 0;
    int wheelDelta = 0;  ///< 120 a notch, positive when the wheel turns away from the user
    Point point{};       ///< client pixels; may lie outside while the pointer is captured
    Size size{};
};

}  // namespace Platform
