#pragma once

#include <cstdint>
#include <functional>

#include "platform/events.h"
#include "platform/geometry.h"

/// What the toolkit's classes share.
namespace DirectGL {

class Window;

/// Four floats from 0.0 to 1.0; not premultiplied.
using ColorRGBA = Platform::Color;
using Platform::Point;
using Platform::Rect;
using Platform::RectF;
using Platform::Size;

constexpr bool IsZero(const ColorRGBA& color) {
    return color == ColorRGBA{};
}

/// What a widget's callback answers: whether it stays in its slot.
enum class WidgetEventRet : int {
    Done = 0,  ///< the slot is emptied and the function destroyed
    Keep = 1,
};
using WidgetCallback = std::function<WidgetEventRet(Window*)>;

/// What a handler of native events answers.
enum class MessageEventRet : int {
    Handled = 0,      ///< nothing else sees the event
    HandledZero = 1,  ///< as Handled
    Default = 2,      ///< the system's own answer, not the toolkit's: a Close destroys the window
    NotHandled = 3,   ///< the next handler, and at last the toolkit, gets it
};
using MessageHandler = std::function<MessageEventRet(const Platform::Event&)>;

enum class WindowType : int {
    Window = 0,
    Text = 1,
    Button = 2,
    Image = 3,
    Scrollbar = 4,
    Input = 7,
    FrameWindow = 8,
    Toggle = 10,
    Modal = 11,
    FramedText = 12,
};

struct WindowStyle {
    ColorRGBA fill;
    ColorRGBA border;
    ColorRGBA gradientEnd;
    bool gradient = false;    ///< from fill to gradientEnd
    bool horizontal = false;  ///< the gradient's direction
    float borderWidth = 1.0F;
};

struct WheelEvent {
    int down = 0;       ///< 1 when the wheel turns towards the user
    int notches = 0;    ///< whole ones
    int modifiers = 0;  ///< Platform::Modifier bits
};

struct KeyEvent {
    Platform::EventType type = Platform::EventType::KeyDown;
    int code = 0;       ///< Platform::Key, or for a Character the unit of text
    int modifiers = 0;  ///< Platform::Modifier bits
};

}  // namespace DirectGL
