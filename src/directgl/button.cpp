#include "directgl/button.h"

#include "directgl/gui.h"

namespace DirectGL {

namespace {

constexpr float DisabledShare = 0.4F;

}  // namespace

const Button::StateColors Button::DefaultColors{
    {0.7F, 0.7F, 0.7F, 1.0F}, {0.3F, 0.3F, 0.3F, 1.0F}, {0.9F, 0.9F, 0.9F, 1.0F}};

const ColorRGBA& Button::StateColors::For(State look) const {
    if (look == State::Hover) return hover;
    return look == State::Pressed ? press : normal;
}

void Button::SetEnabled(bool value) {
    if (enabled != value && gui && gui->GetEntered() == this) {
        // The pointer neither comes nor goes, so nothing else would tell.
        state = value ? State::Hover : State::Normal;
        SetHover(value);
    }
    if (!value) {
        armed = false;
        if (state == State::Pressed) state = State::Normal;
    }
    enabled = value;
    Invalidate();
}

void Button::SetColors(const ColorRGBA& normal, const ColorRGBA& hover, const ColorRGBA& press) {
    colors = {normal, hover, press};
    Invalidate();
}

void Button::SetGradient(const ColorRGBA& normalFar, const ColorRGBA& hoverFar,
                         const ColorRGBA& pressFar, bool isHorizontal) {
    farColors = {normalFar, hoverFar, pressFar};
    gradient = true;
    horizontal = isHorizontal;
    Invalidate();
}

void Button::SetOutline(bool on, std::uint32_t strokeWidth, const ColorRGBA& color) {
    outlined = on;
    outlineWidth = on && strokeWidth == 0 ? 1 : strokeWidth;
    outlineColor = color;
    Invalidate();
}

void Button::SetPill(bool value) {
    pill = value;
    Invalidate();
}

void Button::SetImages(const ImageHandle& normal, const ImageHandle& hover,
                       const ImageHandle& press, const ImageHandle& disabled) {
    images[NormalImage].Set(gui, normal);
    images[HoverImage].Set(gui, hover);
    images[PressImage].Set(gui, press);
    images[DisabledImage].Set(gui, disabled);
    Invalidate();
}

void Button::SetTextColor(const ColorRGBA& color) {
    textColor = color;
    if (label) label->SetTextColor(color);
}

void Button::SetLabel(Text* text) {
    label = text;
    if (!label) return;
    AddChild(label);
    label->DisableMouse();
    label->SetTextColor(textColor);
}

void Button::SetHoverChild(Window* child) {
    hoverChild = child;
    if (!hoverChild) return;
    AddChild(hoverChild);
    hoverChild->DisableMouse();
    if (state == State::Normal) hoverChild->Hide();
}

void Button::SetHover(bool over) {
    if (gui && (handOnHover || !over)) gui->SetHandCursor(over);
    if (!hoverChild) return;
    over ? hoverChild->Show() : hoverChild->Hide();
}

void Button::OnMouseEnter() {
    if (!enabled) return;
    if (state != State::Pressed) state = State::Hover;
    SetHover(true);
    Window::OnMouseEnter();
    Invalidate();
}

void Button::OnMouseLeave() {
    state = State::Normal;
    SetHover(false);
    Window::OnMouseLeave();
    Invalidate();
}

void Button::OnMouseDown() {
    if (!enabled) return;
    state = State::Pressed;
    armed = true;
    Window::OnMouseDown();
    Invalidate();
}

void Button::OnMouseUp() {
    if (enabled) {
        const State before = state;
        state = Contains(GetMouse()) ? State::Hover : State::Normal;
        if (before == State::Pressed && armed) {
            armed = false;
            clicked.Run(this);
        }
    }
    Window::OnMouseUp();
    Invalidate();
}

void Button::OnPressCancelled() {
    armed = false;
    state = gui && gui->GetEntered() == this ? State::Hover : State::Normal;
    Window::OnPressCancelled();
    Invalidate();
}

void Button::ClearHover() {
    if (state != State::Normal) {
        state = State::Normal;
        if (hoverChild) hoverChild->Hide();
        Invalidate();
    }
    if (gui) gui->SetHandCursor(false);
    Window::ClearHover();
}

void Button::HideChildren() {
    ForEachChild([this](Window& child) {
        if (!IsPart(&child)) child.Hide();
    });
}

void Button::DeleteChildren() {
    DeleteChildrenWhere([this](const Window* child) { return !IsPart(child); });
}

void Button::ChildReleased(Window* child) {
    if (child == label) label = nullptr;
    if (child == hoverChild) hoverChild = nullptr;
}

void Button::Draw() {
    UpdateClipRect();
    if (gui && gui->GetTarget()) {
        const RectF rect = Platform::ToRectF(GetAbsoluteRect());
        if (images[NormalImage].GetBitmap())
            DrawImage(*gui->GetTarget(), rect);
        else
            DrawFace(*gui->GetTarget(), rect);
    }
    DrawChildren();
}

void Button::DrawImage(Platform::DrawTarget& target, const RectF& rect) const {
    ImageIndex wanted = NormalImage;
    if (!enabled)
        wanted = DisabledImage;
    else if (state == State::Hover)
        wanted = HoverImage;
    else if (state == State::Pressed)
        wanted = PressImage;
    const Platform::Bitmap* bitmap = images[wanted].GetBitmap();
    float effective = GetEffectiveOpacity();
    if (!bitmap) {
        bitmap = images[NormalImage].GetBitmap();
        if (!enabled) effective *= DisabledShare;
    }
    target.DrawBitmap(*bitmap, rect, effective);
}

Platform::Brush* Button::FaceBrush(const RectF& rect) const {
    const State shown = enabled ? state : State::Normal;
    const float share = enabled ? 1.0F : DisabledShare;
    const ColorRGBA& color = colors.For(shown);
    const float opacityHere = color.alpha * share * GetEffectiveOpacity();
    if (gradient) {
        if (auto* brush = gui->GetLinearGradientBrush(color, farColors.For(shown))) {
            const Platform::PointF start{rect.left, rect.top};
            brush->SetPoints(start, horizontal ? Platform::PointF{rect.right, rect.top}
                                               : Platform::PointF{rect.left, rect.bottom});
            brush->SetOpacity(opacityHere);
            return brush;
        }
    }
    Platform::Brush* brush = gui->GetSolidColorBrush(color);
    if (brush) brush->SetOpacity(opacityHere);
    return brush;
}

float Button::PillRadius() const {
    if (cornerRadius >= 1) return static_cast<float>(cornerRadius);
    return static_cast<float>(std::min(width, height)) / 2.0F;
}

void Button::DrawFace(Platform::DrawTarget& target, const RectF& rect) const {
    if (Platform::Brush* brush = FaceBrush(rect)) {
        if (pill)
            target.FillRoundedRectangle(rect, PillRadius(), *brush);
        else
            target.FillRectangle(rect, *brush);
    }
    if (outlined && outlineWidth != 0 && !IsZero(outlineColor)) DrawOutline(target, rect);
}

void Button::DrawOutline(Platform::DrawTarget& target, const RectF& rect) const {
    Platform::Brush* brush = gui->GetSolidColorBrush(outlineColor);
    if (!brush) return;
    brush->SetOpacity(GetEffectiveOpacity() * outlineColor.alpha);
    const auto stroke = static_cast<float>(outlineWidth);
    if (pill)
        target.DrawRoundedRectangle(rect, PillRadius(), *brush, stroke);
    else
        target.DrawRectangle(rect, *brush, stroke);
}

void Button::CreateDeviceObjects() {
    for (ImageResource& image : images)
        image.CreateBitmap(gui);
    Window::CreateDeviceObjects();
}

void Button::ReleaseDeviceObjects() {
    for (ImageResource& image : images)
        image.ReleaseBitmap();
    Window::ReleaseDeviceObjects();
}

void Button::Reset() {
    label = nullptr;
    hoverChild = nullptr;
    for (ImageResource& image : images)
        image.Set(gui, nullptr);
    clicked.Clear();
    colors = DefaultColors;
    farColors = {};
    outlineColor = {};
    textColor = {1.0F, 1.0F, 1.0F, 1.0F};
    outlineWidth = 0;
    state = State::Normal;
    gradient = horizontal = outlined = pill = armed = false;
    handOnHover = enabled = true;
    Window::Reset();
}

}  // namespace DirectGL
