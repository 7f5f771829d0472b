// From native events to widgets.

#include <cstdlib>
#include <utility>

#include "directgl/gui.h"

namespace DirectGL {

using Platform::Event;
using Platform::EventType;

bool Gui::PumpEvents() {
    if (!window_) return false;
    Event event;
    if (!window_->NextEvent(event)) return true;
    // One hold for all: waiting for a frame before each event would let a busy user get ahead.
    const Guard guard(*this);
    do {
        _Dispatch(event);
        if (hoverStale_) RefreshHover();
        if (event.type == EventType::Destroyed) return false;
    } while (window_->NextEvent(event));
    _ApplyCursor();
    return true;
}

MessageEventRet Gui::_RunHandlers(const std::vector<MessageHandler>& handlers, const Event& event) {
    // By index: a handler may add another one, which sees the next event.
    for (std::size_t i = 0, count = handlers.size(); i < count; ++i) {
        const MessageHandler handler = handlers[i];
        const MessageEventRet answer = handler(event);
        if (answer != MessageEventRet::NotHandled) return answer;
    }
    return MessageEventRet::NotHandled;
}

MessageEventRet Gui::_RunTables(const Event& event) const {
    for (const HandlerTable* table : {&globalHandlers_, &windowHandlers_}) {
        const auto handlers = table->find(event.type);
        if (handlers == table->end()) continue;
        const MessageEventRet answer = _RunHandlers(handlers->second, event);
        if (answer != MessageEventRet::NotHandled) return answer;
    }
    return _RunHandlers(allHandlers_, event);
}

void Gui::_Dispatch(const Event& event) {
    switch (_RunTables(event)) {
        case MessageEventRet::Handled:
        case MessageEventRet::HandledZero:
            return;
        case MessageEventRet::Default:
            if (event.type == EventType::Close) window_->Destroy();
            return;
        case MessageEventRet::NotHandled:
            break;
    }
    _DispatchBuiltIn(event);
}

void Gui::_DispatchBuiltIn(const Event& event) {
    switch (event.type) {
        case EventType::Wake:
            return;
        case EventType::Close:
            closing_ = true;
            window_->Destroy();
            return;
        case EventType::Destroyed:
            closing_ = true;
            return;
        case EventType::Minimized:
            minimized_ = true;
            return;
        case EventType::Resized:
            return _OnResized(event.size);
        case EventType::Exposed:
            dirty_ = true;
            return;
        case EventType::PointerMove:
            return _OnPointerMove(event);
        case EventType::PointerLeave:
            return _OnPointerLeave();
        case EventType::LeftDown:
            mouse_ = event.point;
            return _OnLeftDown();
        case EventType::LeftUp:
            mouse_ = event.point;
            return _OnLeftUp();
        case EventType::RightDown:
            mouse_ = event.point;
            return _OnRightDown();
        case EventType::RightUp:
            mouse_ = event.point;
            return _OnRightUp();
        case EventType::CaptureLost:
            windowDragActive_ = false;
            if (pressedLeft_) pressTaken_ = true;
            _CancelPress(pressedLeft_);
            _CancelPress(pressedRight_);
            return RefreshHover();
        case EventType::Wheel:
            return _OnWheel(event);
        case EventType::KeyDown:
        case EventType::KeyUp:
        case EventType::Character:
            return _OnKey(event);
    }
}

void Gui::_OnResized(Size size) {
    minimized_ = false;
    width_ = size.width;
    height_ = size.height;
    _RecreateDeviceResources();
    _ForEachWidget([](Window& widget) { widget.OnParentResized(); });
    _ForEachWidget([](Window& widget) { widget.OnWindowResized(); });
    dirty_ = true;
}

Window* Gui::HitTest(Point point) const {
    for (auto layer = layers_.rbegin(); layer != layers_.rend(); ++layer) {
        const auto& widgets = layer->second->GetWidgets();
        for (auto widget = widgets.rbegin(); widget != widgets.rend(); ++widget)
            if (Window* hit = (*widget)->HitTest(point)) return hit;
    }
    return nullptr;
}

void Gui::_OnPointerMove(const Event& event) {
    if (windowDragActive_ && (event.buttons & Platform::HeldLeft) != 0) {
        _DragWindow();
        return;
    }
    windowDragActive_ = false;
    mouse_ = event.point;
    mouseOutside_ = false;
    // A release that never came here is known by the button that is no longer held.
    if ((event.buttons & Platform::HeldLeft) == 0) {
        pressTaken_ = false;
        window_->ReleaseCapture();
        _CancelPress(pressedLeft_);
    }
    if ((event.buttons & Platform::HeldRight) == 0) _CancelPress(pressedRight_);
    RefreshHover();
    Window* target = GetPressed() ? GetPressed() : HitTest(mouse_);
    if (target) target->OnMouseMove();
}

void Gui::_OnLeftDown() {
    mouseOutside_ = false;
    pressTaken_ = false;
    Window* hit = HitTest(mouse_);
    pressedLeft_ = hit;
    if (!hit) {
        if (focused_) focused_->Blur();
        return;
    }
    window_->SetCapture();
    hit->Focus();
    // The change of focus may have taken the widget away.
    if (pressedLeft_ == hit) hit->OnMouseDown();
}

void Gui::_OnLeftUp() {
    // A window that moves with the pointer keeps it in one place, so the last move may be missing.
    if (std::exchange(windowDragActive_, false)) _DragWindow();
    window_->ReleaseCapture();
    Window* target = pressedLeft_ ? pressedLeft_ : HitTest(mouse_);
    // The release of a press that was taken away is no click for anybody.
    if (std::exchange(pressTaken_, false)) target = nullptr;
    if (target) target->OnMouseUp();
    pressedLeft_ = nullptr;
    RefreshHover();
}

void Gui::_OnRightDown() {
    mouseOutside_ = false;
    pressedRight_ = HitTest(mouse_);
    if (pressedRight_) pressedRight_->OnRightDown();
}

void Gui::_OnRightUp() {
    Window* target = pressedRight_ ? pressedRight_ : HitTest(mouse_);
    if (target) target->OnRightUp();
    pressedRight_ = nullptr;
    RefreshHover();
}

void Gui::_CancelPress(Window*& pressed) {
    if (!pressed) return;
    Window* widget = std::exchange(pressed, nullptr);
    widget->OnPressCancelled();
}

void Gui::_OnPointerLeave() {
    mouseOutside_ = true;
    handCursor_ = false;
    _LeaveEntered();
}

void Gui::_OnWheel(const Event& event) {
    Window* hit = HitTest(event.point);
    if (!hit) return;
    hit->OnWheel({.down = event.wheelDelta < 1 ? 1 : 0,
                  .notches = std::abs(event.wheelDelta) / 120,
                  .modifiers = event.modifiers});
}

void Gui::_OnKey(const Event& event) {
    if (!focused_) return;
    KeyEvent key{.type = event.type, .code = event.key, .modifiers = event.modifiers};
    if (event.type == EventType::Character) key.code = static_cast<int>(event.character);
    if (event.type == EventType::KeyUp)
        focused_->OnKeyUp(key);
    else
        focused_->OnKeyDown(key);
}

Window* Gui::_HitUnderPointer() const {
    // While it was held it may have gone anywhere.
    const bool inside =
        !mouseOutside_ && mouse_.x >= 0 && mouse_.y >= 0 && mouse_.x < width_ && mouse_.y < height_;
    return inside ? HitTest(mouse_) : nullptr;
}

void Gui::_LeaveEntered() {
    Window* left = std::exchange(entered_, nullptr);
    if (!left) return;
    // What it changes meanwhile makes nobody enter before it has been told.
    const bool guarded = std::exchange(hoverGuard_, true);
    left->OnMouseLeave();
    hoverGuard_ = guarded;
}

void Gui::RefreshHover() {
    hoverStale_ = false;
    if (GetPressed()) return;
    if (_HitUnderPointer() == entered_) return;
    _LeaveEntered();
    // The leave may have put something else there.
    entered_ = _HitUnderPointer();
    if (entered_) entered_->OnMouseEnter();
}

void Gui::ChangeUnderPointer(const std::function<void()>& change) {
    if (hoverGuard_) {
        change();
        return;
    }
    hoverGuard_ = true;
    change();
    RefreshHover();
    hoverGuard_ = false;
}

void Gui::ClearHover() {
    for (const auto& [name, layer] : layers_)
        for (const auto& widget : layer->GetWidgets())
            widget->ClearHover();
    handCursor_ = false;
    _LeaveEntered();
}

void Gui::_ApplyCursor() {
    if (!manageCursor_ || !HasWindow()) return;
    const Platform::CursorShape wanted = handCursor_ ? Platform::CursorShape::Hand : cursor_.load();
    if (wanted == shownCursor_) return;
    shownCursor_ = wanted;
    window_->SetCursor(wanted);
}

void Gui::BeginWindowDrag() {
    if (!HasWindow()) return;
    // Where the button went down: the cursor may have moved on since.
    windowDragOffset_ = mouse_;
    windowDragActive_ = true;
    window_->SetCapture();
}

void Gui::_DragWindow() {
    const Point cursor = window_->GetCursorPosition();
    window_->MoveTo({cursor.x - windowDragOffset_.x, cursor.y - windowDragOffset_.y});
}

}  // namespace DirectGL
