// Events and their callbacks, and the drag of a widget.

#include "directgl/gui.h"
#include "directgl/window.h"

namespace DirectGL {

void Window::Set(Slot slot, WidgetCallback callback) {
    callbacks[static_cast<std::size_t>(slot)].Set(std::move(callback));
}

bool Window::Run(Slot slot) {
    return callbacks[static_cast<std::size_t>(slot)].Run(this);
}

void Window::OnMouseDown() {
    if (draggable) BeginDrag();
    if (nativeDragHandle && gui) gui->BeginWindowDrag();
    Run(Slot::MouseDown);
}

void Window::OnMouseMove() {
    if (draggable && dragging) DragMove();
    Run(Slot::MouseMove);
}

void Window::OnMouseUp() {
    if (draggable && dragging) EndDrag();
    Run(Slot::MouseUp);
}

void Window::OnPressCancelled() {
    if (dragging) EndDrag();
    Run(Slot::PressCancelled);
}

void Window::BeginDrag() {
    dragging = true;
    const Point position = GetAbsolutePosition();
    const Point mouse = GetMouse();
    dragOffset = {mouse.x - position.x, mouse.y - position.y};
    OnDragStart();
}

void Window::DragMove() {
    const Point mouse = GetMouse();
    const Point origin = parent ? parent->GetAbsolutePosition() : Point{};
    SetPosition(mouse.x - dragOffset.x - origin.x, mouse.y - dragOffset.y - origin.y);
    OnDrag();
}

void Window::EndDrag() {
    dragging = false;
    OnDragEnd();
}

void Window::OnWheel(const WheelEvent& event) {
    wheelEvent = event;
    if (!Run(Slot::Wheel) && parent) parent->OnWheel(event);
}

void Window::OnKeyDown(const KeyEvent& event) {
    keyEvent = event;
    Run(Slot::KeyDown);
}

void Window::OnKeyUp(const KeyEvent& event) {
    keyEvent = event;
    Run(Slot::KeyUp);
}

void Window::OnWindowResized() {
    Run(Slot::WindowResized);
    ForEachChild([](Window& child) { child.OnWindowResized(); });
}

void Window::OnRightUp() {
    Run(Slot::RightUp);
}
void Window::OnRightDown() {
    Run(Slot::RightDown);
}
void Window::OnMouseEnter() {
    Run(Slot::MouseEnter);
}
void Window::OnMouseLeave() {
    Run(Slot::MouseLeave);
}
void Window::OnFocus() {
    Run(Slot::Focus);
}
void Window::OnBlur() {
    Run(Slot::Blur);
}
void Window::OnShow() {
    Run(Slot::Show);
}
void Window::OnHide() {
    Run(Slot::Hide);
}
void Window::OnResized() {
    Run(Slot::Resized);
}
void Window::OnMoved() {
    Run(Slot::Moved);
}
void Window::OnParentMoved() {
    Run(Slot::ParentMoved);
}
void Window::OnParentResized() {
    Run(Slot::ParentResized);
}
void Window::OnParentRotated() {
    Run(Slot::ParentRotated);
}
void Window::OnDragStart() {
    Run(Slot::DragStart);
}
void Window::OnDrag() {
    Run(Slot::Drag);
}
void Window::OnDragEnd() {
    Run(Slot::DragEnd);
}

}  // namespace DirectGL
