// The drawing target, its brushes, and the frame.

#include <cstring>
#include <utility>

#include "directgl/gui.h"
#include "directgl/log.h"

namespace DirectGL {

namespace {

/// After the first failed frame of a run has been answered at once, the next tries wait this long.
constexpr double SecondsBetweenRecoveries = 0.5;

void HashFloats(std::uint64_t& hash, const ColorRGBA& color) {
    for (const float part : {color.red, color.green, color.blue, color.alpha}) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &part, sizeof bits);
        hash = (hash ^ bits) * 1099511628211U;
    }
}

}  // namespace

std::size_t Gui::ColorHash::operator()(const ColorRGBA& color) const {
    const auto byte = [](float part) {
        return static_cast<std::uint32_t>(static_cast<std::uint8_t>(part * 255.0F));
    };
    return byte(color.red) | byte(color.green) << 8 | byte(color.blue) << 16 |
           byte(color.alpha) << 24;
}

std::size_t Gui::GradientHash::operator()(const GradientKey& key) const {
    std::uint64_t hash = 14695981039346656037U;
    HashFloats(hash, key.start);
    HashFloats(hash, key.end);
    return static_cast<std::size_t>(hash);
}

void Gui::_ReleaseDeviceResources() {
    const auto release = [](Window& widget) { widget.ReleaseDeviceObjects(); };
    _ForEachWidget(release);
    for (const auto& widget : orphans_)
        release(*widget);
    for (const auto& widget : pendingDelete_)
        release(*widget);
    solidBrushes_.clear();
    gradientBrushes_.clear();
    target_.reset();
}

Platform::Created<Platform::DrawTarget> Gui::_CreateTarget() {
    using Platform::DeviceKind;
    const auto kind = layered_ ? Platform::SurfaceKind::Layered : Platform::SurfaceKind::Opaque;
    auto made = window_->CreateTarget(kind, DeviceKind::Hardware);
    if (made || kind == Platform::SurfaceKind::Opaque) return made;
    LogFailure("DirectGL::Gui::_RecreateDeviceResources", __LINE__, made.result);
    return window_->CreateTarget(kind, DeviceKind::Software);
}

void Gui::_RecreateDeviceResources() {
    _ReleaseDeviceResources();
    if (!HasWindow()) return;
    auto made = _CreateTarget();
    if (!made) {
        LogFailure("DirectGL::Gui::_RecreateDeviceResources", __LINE__, made.result);
        return;
    }
    target_ = std::move(made.object);
    _ForEachWidget([](Window& widget) { widget.CreateDeviceObjects(); });
    for (const auto& widget : orphans_)
        widget->CreateDeviceObjects();
    dirty_ = true;
}

Platform::Brush* Gui::GetSolidColorBrush(const ColorRGBA& color) {
    const auto cached = solidBrushes_.find(color);
    if (cached != solidBrushes_.end()) return cached->second.get();
    if (!target_) return nullptr;
    auto made = target_->CreateSolidBrush(color);
    if (!made) {
        LogFailure("DirectGL::Gui::GetSolidColorBrush", __LINE__, made.result);
        return nullptr;
    }
    return (solidBrushes_[color] = std::move(made.object)).get();
}

Platform::GradientBrush* Gui::GetLinearGradientBrush(const ColorRGBA& start, const ColorRGBA& end) {
    if (!target_) return nullptr;
    const GradientKey key{start, end};
    const auto cached = gradientBrushes_.find(key);
    if (cached != gradientBrushes_.end()) return cached->second.get();
    auto made = target_->CreateGradientBrush(start, end);
    if (!made) {
        Log("%s : CreateLinearGradientBrush failed", "DirectGL::Gui::GetLinearGradientBrush");
        return nullptr;
    }
    return (gradientBrushes_[key] = std::move(made.object)).get();
}

void Gui::_DrawFrame() {
    const bool hadTarget = target_ != nullptr;
    if (hadTarget && _DrawAndPresent() == Platform::GraphicsOk) {
        failedFrames_ = 0;
        return;
    }
    ++failedFrames_;
    dirty_ = true;
    const double now = Now();
    const bool firstOfRun = hadTarget && failedFrames_ == 1;
    if (!firstOfRun && now - lastRecoveryTime_ <= SecondsBetweenRecoveries) return;
    lastRecoveryTime_ = now;
    _RecreateDeviceResources();
}

Platform::GraphicsResult Gui::_DrawAndPresent() {
    target_->BeginFrame();
    target_->Clear(layered_ ? ColorRGBA{} : ColorRGBA{0.0F, 0.0F, 0.0F, 1.0F});
    _ForEachWidget([](Window& widget) {
        if (widget.IsVisible()) widget.Draw();
    });
    if (layered_ && window_->IsMinimized()) {
        // An icon shows nothing, and what fails now is no reason to recover.
        static_cast<void>(target_->EndFrame(nullptr));
        return Platform::GraphicsOk;
    }
    Platform::Presentation presentation{windowOpacity_, std::nullopt};
    if (colorKeyEnabled_) presentation.colorKey = colorKey_;
    return target_->EndFrame(&presentation);
}

void Gui::RenderPass() {
    if (minimized_) {
        if (HasWindow() && window_->IsMinimized()) {
            renderState_ = RenderState::HeldBack;
            return;
        }
        minimized_ = false;
    }
    const Guard guard(*this);
    bool needFrame = alwaysRender_;
    if (dirty_.exchange(false)) needFrame = true;
    _ForEachWidget([&](Window& widget) {
        if (widget.ConsumeRedraw()) needFrame = true;
    });
    renderState_ = needFrame ? RenderState::Drew : RenderState::Idle;
    if (!needFrame) return;
    _DrawFrame();
    const double time = Now();
    lastRenderTime_ = time;
    if (countFrames_) _CountFrame(time);
}

void Gui::UpdatePass() {
    const double time = Now();
    const Guard guard(*this);
    _ForEachWidget([time](Window& widget) { widget.Update(time); });
    lastUpdateTime_ = time;
    if (hoverStale_) RefreshHover();
    // A destructor may give up further widgets; those wait for the next pass.
    const auto doomed = std::exchange(pendingDelete_, {});
    // A callback may have given a widget the focus after it was deleted.
    for (const auto& widget : doomed)
        Forget(widget.get());
}

void Gui::_CountFrame(double time) {
    if (statisticsStart_ == 0.0) statisticsStart_ = time;
    ++frameCount_;
    if (time - statisticsStart_ < 1.0) return;
    measuredFps_ = frameCount_;
    frameCount_ = 0;
    statisticsStart_ = time;
}

}  // namespace DirectGL
