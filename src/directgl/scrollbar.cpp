#include "directgl/scrollbar.h"

#include <algorithm>
#include <cmath>

#include "directgl/gui.h"

namespace DirectGL {

namespace {

constexpr ColorRGBA Track{0.431F, 0.431F, 0.431F, 1.0F};
constexpr ColorRGBA PartNormal{0.706F, 0.706F, 0.706F, 1.0F};
constexpr ColorRGBA PartHover{0.902F, 0.902F, 0.902F, 1.0F};
constexpr ColorRGBA PartPress{0.627F, 0.627F, 0.627F, 1.0F};
constexpr int ArrowSize = 20;
constexpr int FirstThumbHeight = 30;
/// Closer to its target than this the thumb is there.
constexpr float SnapDistance = 0.0005F;

}  // namespace

Scrollbar::Scrollbar(Gui* itsGui) : Window(itsGui) {
    width = 20;
    height = 100;
    MakeParts();
}

void Scrollbar::MakeParts() {
    SetColor(Track);
    upButton = MakePart(ArrowSize, ArrowSize);
    downButton = MakePart(ArrowSize, ArrowSize);
    thumb = MakePart(ArrowSize, FirstThumbHeight);
    thumb->SetPill(true);
    _AssignButtonEvents();
    PlaceParts();
}

Button* Scrollbar::MakePart(int partWidth, int partHeight) {
    auto* part = Create<Button>();
    part->SetColors(PartNormal, PartHover, PartPress);
    part->SetHandOnHover(false);
    part->SetSize(partWidth, partHeight);
    return part;
}

void Scrollbar::_AssignButtonEvents() {
    upButton->SetClicked([this](Window*) {
        StepBy(-step);
        return WidgetEventRet::Keep;
    });
    downButton->SetClicked([this](Window*) {
        StepBy(step);
        return WidgetEventRet::Keep;
    });
    thumb->SetMouseDown([this](Window*) {
        draggingThumb = true;
        const Point position = thumb->GetAbsolutePosition();
        grab = {GetMouse().x - position.x, GetMouse().y - position.y};
        return WidgetEventRet::Keep;
    });
    thumb->SetMouseMove([this](Window*) {
        if (draggingThumb) DragThumb();
        return WidgetEventRet::Keep;
    });
    const auto letGo = [this](Window*) {
        draggingThumb = false;
        return WidgetEventRet::Keep;
    };
    thumb->SetMouseUp(letGo);
    thumb->SetPressCancelled(letGo);
}

bool Scrollbar::IsPart(const Window* child) const {
    return child && (child == upButton || child == downButton || child == thumb);
}

int Scrollbar::GetTrackTop() const {
    return arrowsVisible && upButton ? trackInset + upButton->GetHeight() : 0;
}

int Scrollbar::GetTrackLength() const {
    if (!arrowsVisible || !upButton || !downButton) return std::max(0, height);
    return std::max(0, height - 2 * trackInset - upButton->GetHeight() - downButton->GetHeight());
}

void Scrollbar::StepBy(float delta) {
    Settle(std::clamp(value + delta, 0.0F, 1.0F));
}

void Scrollbar::DragThumb() {
    const int track = GetTrackLength() - thumb->GetHeight();
    if (track <= 0) return;
    const int top = GetMouse().y - GetAbsolutePosition().y - grab.y - GetTrackTop();
    Settle(std::clamp(static_cast<float>(top) / static_cast<float>(track), 0.0F, 1.0F));
}

void Scrollbar::Settle(float newValue) {
    value = targetValue = newValue;
    UpdatePosition();
    Invalidate();
}

void Scrollbar::SetValue(float newValue) {
    Settle(std::clamp(newValue, 0.0F, 1.0F));
}

void Scrollbar::SetTargetValue(float newValue) {
    if (smoothing <= 0.0F)
        SetValue(newValue);
    else
        targetValue = std::clamp(newValue, 0.0F, 1.0F);
}

void Scrollbar::SetThumbRatio(float ratio) {
    if (!thumb) return;
    const int track = GetTrackLength();
    const float share = std::clamp(ratio, 0.0F, 1.0F);
    int length = std::max(minThumb, static_cast<int>(static_cast<float>(track) * share));
    if (track > 0) length = std::min(length, track);
    thumb->SetSize(thumb->GetWidth(), length);
    PlaceParts();
}

void Scrollbar::SetArrowsVisible(bool shown) {
    arrowsVisible = shown;
    for (Button* arrow : {upButton, downButton})
        if (arrow) shown ? arrow->Show() : arrow->Hide();
    PlaceParts();
}

void Scrollbar::SetTrackInset(int pixels) {
    trackInset = pixels;
    PlaceParts();
}

void Scrollbar::UpdatePosition() {
    PlaceParts();
    valueChanged.Run(this);
}

void Scrollbar::PlaceParts() {
    if (upButton) upButton->SetPosition((width - upButton->GetWidth()) / 2, 0);
    if (downButton) {
        downButton->SetPosition((width - downButton->GetWidth()) / 2,
                                height - downButton->GetHeight());
    }
    if (!thumb) return;
    const auto room = static_cast<float>(GetTrackLength() - thumb->GetHeight());
    const Point place{(width - thumb->GetWidth()) / 2,
                      static_cast<int>(room * value) + GetTrackTop()};
    if (place == thumb->GetPosition()) return;
    // It may slide out from under the pointer, or under it.
    const auto slide = [&] { thumb->SetPosition(place); };
    gui ? gui->ChangeUnderPointer(slide) : slide();
}

void Scrollbar::SetSize(int newWidth, int newHeight) {
    Window::SetSize(newWidth, newHeight);
    for (Button* part : {upButton, downButton, thumb})
        if (part) part->SetSize(newWidth, part->GetHeight());
    PlaceParts();
}

void Scrollbar::Update(double time) {
    Window::Update(time);
    if (smoothing <= 0.0F || value == targetValue) return;
    value += (targetValue - value) * smoothing;
    if (std::abs(targetValue - value) < SnapDistance) value = targetValue;
    UpdatePosition();
    Invalidate();
}

void Scrollbar::HideChildren() {
    ForEachChild([this](Window& child) {
        if (!IsPart(&child)) child.Hide();
    });
}

void Scrollbar::DeleteChildren() {
    DeleteChildrenWhere([this](const Window* child) { return !IsPart(child); });
}

void Scrollbar::ChildReleased(Window* child) {
    if (child == upButton) upButton = nullptr;
    if (child == downButton) downButton = nullptr;
    if (child == thumb) thumb = nullptr;
}

void Scrollbar::Reset() {
    upButton = downButton = thumb = nullptr;
    valueChanged.Clear();
    draggingThumb = false;
    value = targetValue = smoothing = 0.0F;
    step = 1.0F / 30.0F;
    trackInset = 3;
    minThumb = 20;
    arrowsVisible = true;
    Window::Reset();
    width = 20;
    height = 100;
    MakeParts();
}

}  // namespace DirectGL
