// Where a widget is, what is under a point, and what is drawn there.

#include "directgl/gui.h"
#include "directgl/window.h"

namespace DirectGL {

Point Window::GetAbsolutePosition() const {
    Point position{x, y};
    for (const Window* ancestor = parent; ancestor; ancestor = ancestor->parent) {
        position.x += ancestor->x;
        position.y += ancestor->y;
    }
    return position;
}

Rect Window::GetAbsoluteRect() const {
    const Point position = GetAbsolutePosition();
    return {position.x, position.y, position.x + width, position.y + height};
}

void Window::SetPosition(int newX, int newY) {
    x = newX;
    y = newY;
    OnMoved();
    ForEachChild([](Window& child) { child.OnParentMoved(); });
    Invalidate();
}

void Window::SetSize(int newWidth, int newHeight) {
    width = newWidth;
    height = newHeight;
    OnResized();
    ForEachChild([](Window& child) { child.OnParentResized(); });
    Invalidate();
}

Size Window::GetAlignmentSpace() const {
    if (parent) return parent->GetSize();
    if (gui) return {gui->GetWidth(), gui->GetHeight()};
    return {};
}

void Window::AlignLeft() {
    SetPosition(0, y);
}

void Window::AlignRight() {
    SetPosition(GetAlignmentSpace().width - width, y);
}

void Window::AlignTop() {
    SetPosition(x, 0);
}

void Window::AlignBottom() {
    SetPosition(x, GetAlignmentSpace().height - height);
}

void Window::CenterVertically() {
    SetPosition(x, (GetAlignmentSpace().height - height) / 2);
}

void Window::CenterHorizontally() {
    SetPosition((GetAlignmentSpace().width - width) / 2, y);
}

bool Window::Contains(Point point) const {
    const Rect rect = GetAbsoluteRect();
    return point.x >= rect.left && point.x <= rect.right && point.y >= rect.top &&
           point.y <= rect.bottom;
}

Window* Window::HitTest(Point point) {
    if (!visible) return nullptr;
    if (type == WindowType::FrameWindow && !Contains(point)) return nullptr;
    for (auto child = children.rbegin(); child != children.rend(); ++child)
        if (Window* hit = (*child)->HitTest(point)) return hit;
    return mouseEnabled && Contains(point) ? this : nullptr;
}

void Window::UpdateClipRect() {
    if (parent)
        clipRect = parent->clipRect;
    else if (gui)
        clipRect = {0, 0, gui->GetWidth(), gui->GetHeight()};
    else
        clipRect = {};
}

void Window::SetStyle(const WindowStyle& value) {
    style = std::make_unique<WindowStyle>(value);
    Invalidate();
}

void Window::SetColor(const ColorRGBA& color) {
    SetStyle({.fill = color, .border = color, .gradientEnd = {}});
}

void Window::SetCornerRadius(int radius) {
    cornerRadius = radius;
    Invalidate();
}

void Window::SetOpacity(float value) {
    opacity = value;
    Invalidate();
}

float Window::GetEffectiveOpacity() const {
    float product = opacity;
    for (const Window* ancestor = parent; ancestor; ancestor = ancestor->parent)
        product *= ancestor->opacity;
    return product;
}

void Window::SetRotation(float degrees) {
    rotation = degrees;
    ForEachChild([](Window& child) { child.OnParentRotated(); });
    Invalidate();
}

float Window::GetEffectiveRotation() const {
    float sum = rotation;
    for (const Window* ancestor = parent; ancestor; ancestor = ancestor->parent)
        sum += ancestor->rotation;
    return sum;
}

void Window::SetPulse(float min, float max, float periodMs) {
    pulseMin = min;
    pulseMax = max;
    pulsePeriod = periodMs;
    pulseEnabled = true;
}

void Window::Draw() {
    UpdateClipRect();
    DrawBackground();
    DrawChildren();
}

void Window::DrawBackground() {
    if (!style || !gui || !gui->GetTarget()) return;
    Platform::DrawTarget& target = *gui->GetTarget();
    const float effective = GetEffectiveOpacity();
    const RectF rect = Platform::ToRectF(GetAbsoluteRect());
    const auto radius = static_cast<float>(cornerRadius);

    Platform::Brush* brush = nullptr;
    if (style->gradient) {
        auto* gradient = gui->GetLinearGradientBrush(style->fill, style->gradientEnd);
        if (gradient) {
            gradient->SetPoints({rect.left, rect.top},
                                style->horizontal ? Platform::PointF{rect.right, rect.top}
                                                  : Platform::PointF{rect.left, rect.bottom});
            gradient->SetOpacity(effective);
        }
        brush = gradient;
    }
    if (!brush) {
        brush = gui->GetSolidColorBrush(style->fill);
        if (brush) brush->SetOpacity(effective * style->fill.alpha);
    }
    if (brush && cornerRadius >= 1)
        target.FillRoundedRectangle(rect, radius, *brush);
    else if (brush)
        target.FillRectangle(rect, *brush);

    if (style->border == style->fill || IsZero(style->border)) return;
    Platform::Brush* border = gui->GetSolidColorBrush(style->border);
    if (!border) return;
    border->SetOpacity(effective * style->border.alpha);
    const float stroke = style->borderWidth > 0.0F ? style->borderWidth : 1.0F;
    if (cornerRadius >= 1)
        target.DrawRoundedRectangle(rect, radius, *border, stroke);
    else
        target.DrawRectangle(rect, *border, stroke);
}

void Window::DrawChildren() {
    ForEachChild([](Window& child) {
        if (child.visible) child.Draw();
    });
}

void Window::CreateDeviceObjects() {
    Run(Slot::DeviceObjectsCreated);
    ForEachChild([](Window& child) { child.CreateDeviceObjects(); });
}

void Window::ReleaseDeviceObjects() {
    ForEachChild([](Window& child) { child.ReleaseDeviceObjects(); });
}

}  // namespace DirectGL
