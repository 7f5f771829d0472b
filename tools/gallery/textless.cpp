#include "textless.h"

#include <utility>

namespace Gallery {

namespace {

using namespace Platform;

class TextlessTarget final : public DrawTarget {
public:
    explicit TextlessTarget(std::unique_ptr<DrawTarget> target) : target_(std::move(target)) {}

    void DrawTextLayout(PointF, const TextLayout&, Brush&) override {}

    Size GetSize() const override { return target_->GetSize(); }
    void BeginFrame() override { target_->BeginFrame(); }
    GraphicsResult EndFrame(const Presentation* presentation) override {
        return target_->EndFrame(presentation);
    }
    void Clear(Color color) override { target_->Clear(color); }
    void FillRectangle(const RectF& rect, Brush& brush) override {
        target_->FillRectangle(rect, brush);
    }
    void FillRoundedRectangle(const RectF& rect, float radius, Brush& brush) override {
        target_->FillRoundedRectangle(rect, radius, brush);
    }
    void DrawRectangle(const RectF& rect, Brush& brush, float strokeWidth) override {
        target_->DrawRectangle(rect, brush, strokeWidth);
    }
    void DrawRoundedRectangle(const RectF& rect, float radius, Brush& brush,
                              float strokeWidth) override {
        target_->DrawRoundedRectangle(rect, radius, brush, strokeWidth);
    }
    void FillEllipse(PointF center, float radiusX, float radiusY, Brush& brush) override {
        target_->FillEllipse(center, radiusX, radiusY, brush);
    }
    void DrawEllipse(PointF center, float radiusX, float radiusY, Brush& brush,
                     float strokeWidth) override {
        target_->DrawEllipse(center, radiusX, radiusY, brush, strokeWidth);
    }
    void DrawLine(PointF from, PointF to, Brush& brush, float strokeWidth) override {
        target_->DrawLine(from, to, brush, strokeWidth);
    }
    void DrawArc(const Arc& arc, PointF center, float rotation, Brush& brush,
                 float strokeWidth) override {
        target_->DrawArc(arc, center, rotation, brush, strokeWidth);
    }
    void DrawBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) override {
        target_->DrawBitmap(bitmap, rect, opacity);
    }
    void TileBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) override {
        target_->TileBitmap(bitmap, rect, opacity);
    }
    void FillOpacityMask(const Bitmap& bitmap, const RectF& rect, Brush& brush) override {
        target_->FillOpacityMask(bitmap, rect, brush);
    }
    void PushClip(const RectF& rect) override { target_->PushClip(rect); }
    void PushRoundedClip(const RectF& rect, float radius) override {
        target_->PushRoundedClip(rect, radius);
    }
    void PopClip() override { target_->PopClip(); }
    Created<Brush> CreateSolidBrush(Color color) override {
        return target_->CreateSolidBrush(color);
    }
    Created<GradientBrush> CreateGradientBrush(Color start, Color end) override {
        return target_->CreateGradientBrush(start, end);
    }
    Created<Bitmap> CreateBitmap(Size size, BitmapAlpha alpha) override {
        return target_->CreateBitmap(size, alpha);
    }
    Created<Bitmap> CreateBitmap(const Image& image) override {
        return target_->CreateBitmap(image);
    }
    Created<Arc> CreateArc(float radius, float startDegrees, float sweepDegrees) override {
        return target_->CreateArc(radius, startDegrees, sweepDegrees);
    }
    Image ReadFrame() override { return target_->ReadFrame(); }

private:
    std::unique_ptr<DrawTarget> target_;
};

}  // namespace

Created<DrawTarget> TextlessGraphics::CreateOffscreenTarget(Size size) {
    auto made = graphics_.CreateOffscreenTarget(size);
    if (!made) return made.result;
    return std::make_unique<TextlessTarget>(std::move(made.object));
}

}  // namespace Gallery
