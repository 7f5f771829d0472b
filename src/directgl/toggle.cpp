#include "directgl/toggle.h"

#include <algorithm>

#include "directgl/gui.h"

namespace DirectGL {

namespace {

ColorRGBA Mix(const ColorRGBA& from, const ColorRGBA& to, float share) {
    const auto mix = [share](float a, float b) { return a + (b - a) * share; };
    return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue),
            mix(from.alpha, to.alpha)};
}

}  // namespace

void Toggle::SetOn(bool value, bool animate) {
    const float wanted = value ? 1.0F : 0.0F;
    if (on == value && animTarget == wanted) return;
    on = value;
    if (animate) {
        StartSliding();
        return;
    }
    knob = animTarget = wanted;
    Invalidate();
}

void Toggle::StartSliding() {
    animTarget = GetTarget();
    animStart = knob;
    animStartTime = Now();
    Invalidate();
}

void Toggle::SetColors(const ColorRGBA& off, const ColorRGBA& onColor, const ColorRGBA& knobColor) {
    colorOff = off;
    colorOn = onColor;
    colorKnob = knobColor;
    Invalidate();
}

void Toggle::SetKnobMargin(int pixels) {
    knobMargin = pixels;
    Invalidate();
}

void Toggle::SetImages(const ImageHandle& off, const ImageHandle& onImage,
                       const ImageHandle& knobImage) {
    imageOff.Set(gui, off);
    imageOn.Set(gui, onImage);
    imageKnob.Set(gui, knobImage);
    Invalidate();
}

void Toggle::OnMouseUp() {
    if (Contains(GetMouse())) {
        on = !on;
        StartSliding();
        changed.Run(this);
    }
    Window::OnMouseUp();
}

void Toggle::Update(double time) {
    Window::Update(time);
    if (knob == animTarget) return;
    // An update that waited for the lock may be of a time before the click.
    const float passed = std::max(0.0F, static_cast<float>(time - animStartTime));
    const float share = animDuration > 0.0F ? passed / animDuration : 1.0F;
    if (share < 1.0F)
        knob = animStart + (animTarget - animStart) * (1.0F - (1.0F - share) * (1.0F - share));
    else
        knob = animTarget;
    Invalidate();
}

void Toggle::Draw() {
    UpdateClipRect();
    DrawBackground();
    if (gui && gui->GetTarget()) {
        if (imageOff.GetBitmap() && imageOn.GetBitmap())
            DrawImages(*gui->GetTarget());
        else
            DrawColors(*gui->GetTarget());
    }
    DrawChildren();
}

RectF Toggle::GetKnobRect() const {
    const Point position = GetAbsolutePosition();
    const int diameter = height - 2 * knobMargin;
    const auto way = static_cast<float>(std::max(0, width - diameter - 2 * knobMargin));
    const float left = static_cast<float>(position.x + knobMargin) + knob * way;
    const auto top = static_cast<float>(position.y + knobMargin);
    const auto size = static_cast<float>(diameter);
    return {left, top, left + size, top + size};
}

void Toggle::DrawColors(Platform::DrawTarget& target) const {
    const float effective = GetEffectiveOpacity();
    const ColorRGBA track = Mix(colorOff, colorOn, knob);
    if (Platform::Brush* brush = gui->GetSolidColorBrush(track)) {
        brush->SetOpacity(effective * track.alpha);
        target.FillRoundedRectangle(Platform::ToRectF(GetAbsoluteRect()),
                                    static_cast<float>(height) * 0.5F, *brush);
    }
    if (Platform::Brush* brush = gui->GetSolidColorBrush(colorKnob)) {
        brush->SetOpacity(effective * colorKnob.alpha);
        const RectF rect = GetKnobRect();
        const float radius = rect.Width() / 2.0F;
        target.FillEllipse({rect.left + radius, rect.top + radius}, radius, radius, *brush);
    }
}

void Toggle::DrawImages(Platform::DrawTarget& target) const {
    const float effective = GetEffectiveOpacity();
    const RectF rect = Platform::ToRectF(GetAbsoluteRect());
    target.DrawBitmap(*imageOff.GetBitmap(), rect, effective);
    target.DrawBitmap(*imageOn.GetBitmap(), rect, knob * effective);
    if (imageKnob.GetBitmap()) target.DrawBitmap(*imageKnob.GetBitmap(), GetKnobRect(), effective);
}

void Toggle::CreateDeviceObjects() {
    for (ImageResource* image : {&imageOff, &imageOn, &imageKnob})
        image->CreateBitmap(gui);
    Window::CreateDeviceObjects();
}

void Toggle::ReleaseDeviceObjects() {
    for (ImageResource* image : {&imageOff, &imageOn, &imageKnob})
        image->ReleaseBitmap();
    Window::ReleaseDeviceObjects();
}

}  // namespace DirectGL
