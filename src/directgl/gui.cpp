#include "directgl/gui.h"

#include <algorithm>
#include <utility>

namespace DirectGL {

namespace {

/// Whether the candidate is the widget or below it.
bool IsWithin(const Window* candidate, const Window* widget) {
    for (; candidate; candidate = candidate->GetParent())
        if (candidate == widget) return true;
    return false;
}

}  // namespace

Gui::Gui(Platform::Desktop& desktop)
    : desktop_(desktop), privateFonts_(desktop.GetGraphics().GetPrivateFonts()) {}

Gui::~Gui() {
    _StopThreads();
    Clear();
}

bool Gui::Create(Platform::WindowSpec spec) {
    if (spec.title.empty()) spec.title = L"DirectGLWindow";
    window_ = desktop_.OpenWindow(spec).object;
    if (!window_) return false;
    const Size client = window_->GetClientSize();
    width_ = client.width;
    height_ = client.height;
    dpi_ = window_->GetDpi();
    if (dpi_ == 0) dpi_ = 96;
    _RecreateDeviceResources();
    if (showOnCreate_) window_->Show();
    return true;
}

void Gui::DestroyWindow() {
    if (!window_) return;
    const Guard guard(*this);
    _ReleaseDeviceResources();
    window_->Destroy();
    for (Platform::Event event; window_->NextEvent(event);) {
    }
}

void Gui::SetLayered() {
    layered_ = true;
    if (window_) {
        window_->MakeLayered();
        // A frame that was taken away has left a larger client area, whose event still waits.
        const Size client = window_->GetClientSize();
        width_ = client.width;
        height_ = client.height;
    }
    _RecreateDeviceResources();
}

void Gui::SetRoundedRegion(int radius) {
    if (window_) window_->SetRoundedRegion(radius);
}

void Gui::SetMinTrack(Size size) {
    minTrack_ = size;
    if (window_) window_->SetTrackLimits(minTrack_, maxTrack_);
}

void Gui::SetMaxTrack(Size size) {
    maxTrack_ = size;
    if (window_) window_->SetTrackLimits(minTrack_, maxTrack_);
}

Layer* Gui::AddLayer(const std::string& name) {
    if (FindLayer(name)) return nullptr;
    return layers_.emplace_back(name, std::make_unique<Layer>(this)).second.get();
}

Layer* Gui::FindLayer(const std::string& name) const {
    const auto found = std::ranges::find(
        layers_, name, [](const auto& layer) -> const auto& { return layer.first; });
    return found == layers_.end() ? nullptr : found->second.get();
}

void Gui::Clear() {
    const Guard guard(*this);
    pressedLeft_ = pressedRight_ = focused_ = entered_ = nullptr;
    // Whatever was cut off a tree still knows its layer: it goes first.
    pendingDelete_.clear();
    orphans_.clear();
    layers_.clear();
    solidBrushes_.clear();
    gradientBrushes_.clear();
    target_.reset();
}

void Gui::AddGlobalMessageEvent(Platform::EventType type, MessageHandler handler) {
    globalHandlers_[type].push_back(std::move(handler));
}

void Gui::AddMessageEvent(Platform::EventType type, MessageHandler handler) {
    windowHandlers_[type].push_back(std::move(handler));
}

void Gui::AddAllMessagesEvent(MessageHandler handler) {
    allHandlers_.push_back(std::move(handler));
}

double Gui::Now() const {
    return desktop_.GetTimeSource().Seconds();
}

void Gui::Forget(const Window* widget) {
    if (IsWithin(pressedLeft_, widget)) pressedLeft_ = nullptr;
    if (IsWithin(pressedRight_, widget)) pressedRight_ = nullptr;
    if (IsWithin(focused_, widget)) focused_ = nullptr;
    if (IsWithin(entered_, widget)) {
        entered_ = nullptr;
        handCursor_ = false;
        hoverStale_ = true;
    }
}

void Gui::LetGo(const Window* widget) {
    if (IsWithin(pressedLeft_, widget)) _CancelPress(pressedLeft_);
    if (IsWithin(pressedRight_, widget)) _CancelPress(pressedRight_);
    if (IsWithin(focused_, widget)) focused_->Blur();
    if (IsWithin(entered_, widget)) {
        hoverStale_ = true;
        _LeaveEntered();
    }
    // Their callbacks may have begun something anew.
    Forget(widget);
}

void Gui::DestroyLater(std::unique_ptr<Window> widget) {
    pendingDelete_.push_back(std::move(widget));
}

bool Gui::IsDoomed(const Window* widget) const {
    return std::ranges::find(pendingDelete_, widget, &std::unique_ptr<Window>::get) !=
           pendingDelete_.end();
}

void Gui::KeepOrphan(std::unique_ptr<Window> widget) {
    orphans_.push_back(std::move(widget));
}

std::unique_ptr<Window> Gui::TakeOrphan(const Window* widget) {
    const auto found = std::ranges::find(orphans_, widget, &std::unique_ptr<Window>::get);
    if (found == orphans_.end()) return nullptr;
    std::unique_ptr<Window> taken = std::move(*found);
    orphans_.erase(found);
    return taken;
}

}  // namespace DirectGL
