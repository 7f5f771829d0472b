#pragma once

#include <atomic>

#include "platform/desktop.h"

namespace DirectGL {

/// Real drawing that fails on demand: everything is handed on to another target, and as many
/// frames or new objects as are asked for are reported lost.
class FailingGraphics final : public Platform::Graphics {
public:
    explicit FailingGraphics(std::unique_ptr<Platform::Graphics> inner)
        : inner_(std::move(inner)) {}

    Platform::TextEngine& GetTextEngine() override { return inner_->GetTextEngine(); }
    Platform::PrivateFonts& GetPrivateFonts() override { return inner_->GetPrivateFonts(); }
    Platform::ImageCodec& GetImageCodec() override { return inner_->GetImageCodec(); }
    Platform::Created<Platform::DrawTarget> CreateOffscreenTarget(Platform::Size size) override;

    std::atomic<int> failFrames = 0;
    std::atomic<int> failObjects = 0;
    std::atomic<int> liveTargets = 0;

private:
    std::unique_ptr<Platform::Graphics> inner_;
};

class FailingTarget final : public Platform::DrawTarget {
public:
    FailingTarget(FailingGraphics& faults, std::unique_ptr<Platform::DrawTarget> inner)
        : faults_(faults), inner_(std::move(inner)) {
        ++faults_.liveTargets;
    }
    ~FailingTarget() override { --faults_.liveTargets; }

    Platform::Size GetSize() const override { return inner_->GetSize(); }
    void BeginFrame() override { inner_->BeginFrame(); }
    Platform::GraphicsResult EndFrame(const Platform::Presentation* shown) override {
        const Platform::GraphicsResult result = inner_->EndFrame(shown);
        return Fails(faults_.failFrames) ? Platform::GraphicsTargetLost : result;
    }
    void Clear(Platform::Color color) override { inner_->Clear(color); }
    void FillRectangle(const Platform::RectF& rect, Platform::Brush& brush) override {
        inner_->FillRectangle(rect, brush);
    }
    void FillRoundedRectangle(const Platform::RectF& rect, float radius,
                              Platform::Brush& brush) override {
        inner_->FillRoundedRectangle(rect, radius, brush);
    }
    void DrawRectangle(const Platform::RectF& rect, Platform::Brush& brush, float width) override {
        inner_->DrawRectangle(rect, brush, width);
    }
    void DrawRoundedRectangle(const Platform::RectF& rect, float radius, Platform::Brush& brush,
                              float width) override {
        inner_->DrawRoundedRectangle(rect, radius, brush, width);
    }
    void FillEllipse(Platform::PointF center, float radiusX, float radiusY,
                     Platform::Brush& brush) override {
        inner_->FillEllipse(center, radiusX, radiusY, brush);
    }
    void DrawEllipse(Platform::PointF center, float radiusX, float radiusY, Platform::Brush& brush,
                     float width) override {
        inner_->DrawEllipse(center, radiusX, radiusY, brush, width);
    }
    void DrawLine(Platform::PointF from, Platform::PointF to, Platform::Brush& brush,
                  float width) override {
        inner_->DrawLine(from, to, brush, width);
    }
    void DrawArc(const Platform::Arc& arc, Platform::PointF center, float rotation,
                 Platform::Brush& brush, float width) override {
        inner_->DrawArc(arc, center, rotation, brush, width);
    }
    void DrawBitmap(const Platform::Bitmap& bitmap, const Platform::RectF& rect,
                    float opacity) override {
        inner_->DrawBitmap(bitmap, rect, opacity);
    }
    void TileBitmap(const Platform::Bitmap& bitmap, const Platform::RectF& rect,
                    float opacity) override {
        inner_->TileBitmap(bitmap, rect, opacity);
    }
    void FillOpacityMask(const Platform::Bitmap& bitmap, const Platform::RectF& rect,
                         Platform::Brush& brush) override {
        inner_->FillOpacityMask(bitmap, rect, brush);
    }
    void DrawTextLayout(Platform::PointF origin, const Platform::TextLayout& layout,
                        Platform::Brush& brush) override {
        inner_->DrawTextLayout(origin, layout, brush);
    }
    void PushClip(const Platform::RectF& rect) override { inner_->PushClip(rect); }
    void PushRoundedClip(const Platform::RectF& rect, float radius) override {
        inner_->PushRoundedClip(rect, radius);
    }
    void PopClip() override { inner_->PopClip(); }
    Platform::Created<Platform::Brush> CreateSolidBrush(Platform::Color color) override {
        if (Fails(faults_.failObjects)) return Platform::GraphicsFailed;
        return inner_->CreateSolidBrush(color);
    }
    Platform::Created<Platform::GradientBrush> CreateGradientBrush(Platform::Color start,
                                                                   Platform::Color end) override {
        if (Fails(faults_.failObjects)) return Platform::GraphicsFailed;
        return inner_->CreateGradientBrush(start, end);
    }
    Platform::Created<Platform::Bitmap> CreateBitmap(Platform::Size size,
                                                     Platform::BitmapAlpha alpha) override {
        if (Fails(faults_.failObjects)) return Platform::GraphicsFailed;
        return inner_->CreateBitmap(size, alpha);
    }
    Platform::Created<Platform::Bitmap> CreateBitmap(const Platform::Image& image) override {
        if (Fails(faults_.failObjects)) return Platform::GraphicsFailed;
        return inner_->CreateBitmap(image);
    }
    Platform::Created<Platform::Arc> CreateArc(float radius, float start, float sweep) override {
        if (Fails(faults_.failObjects)) return Platform::GraphicsFailed;
        return inner_->CreateArc(radius, start, sweep);
    }
    Platform::Image ReadFrame() override { return inner_->ReadFrame(); }

private:
    static bool Fails(std::atomic<int>& count) {
        if (count <= 0) return false;
        --count;
        return true;
    }

    FailingGraphics& faults_;
    std::unique_ptr<Platform::DrawTarget> inner_;
};

inline Platform::Created<Platform::DrawTarget> FailingGraphics::CreateOffscreenTarget(
    Platform::Size size) {
    auto made = inner_->CreateOffscreenTarget(size);
    if (!made) return made.result;
    return std::make_unique<FailingTarget>(*this, std::move(made.object));
}

}  // namespace DirectGL
