#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/headless/recording_graphics.h"

namespace Platform {

/// Notes down each call and paints it in the plainest way: whole pixels, no smoothing, a text as
/// one box for each of its characters. Enough to ask which colour stands at a place.
class RecordingTarget final : public DrawTarget {
public:
    RecordingTarget(RecordingGraphics& books, Size size);
    ~RecordingTarget() override;

    Size GetSize() const override { return frame_.size; }
    void BeginFrame() override;
    GraphicsResult EndFrame(const Presentation* presentation) override;
    void Clear(Color color) override;
    void FillRectangle(const RectF& rect, Brush& brush) override;
    void FillRoundedRectangle(const RectF& rect, float radius, Brush& brush) override;
    void DrawRectangle(const RectF& rect, Brush& brush, float strokeWidth) override;
    void DrawRoundedRectangle(const RectF& rect, float radius, Brush& brush,
                              float strokeWidth) override;
    void FillEllipse(PointF center, float radiusX, float radiusY, Brush& brush) override;
    void DrawEllipse(PointF center, float radiusX, float radiusY, Brush& brush,
                     float strokeWidth) override;
    void DrawLine(PointF from, PointF to, Brush& brush, float strokeWidth) override;
    void DrawArc(const Arc& arc, PointF center, float rotation, Brush& brush,
                 float strokeWidth) override;
    void DrawBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) override;
    void TileBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) override;
    void FillOpacityMask(const Bitmap& bitmap, const RectF& rect, Brush& brush) override;
    void DrawTextLayout(PointF origin, const TextLayout& layout, Brush& brush) override;
    void PushClip(const RectF& rect) override;
    void PushRoundedClip(const RectF& rect, float radius) override;
    void PopClip() override;
    Created<Brush> CreateSolidBrush(Color color) override;
    Created<GradientBrush> CreateGradientBrush(Color start, Color end) override;
    Created<Bitmap> CreateBitmap(Size size, BitmapAlpha alpha) override;
    Created<Bitmap> CreateBitmap(const Image& image) override;
    Created<Arc> CreateArc(float radius, float startDegrees, float sweepDegrees) override;
    Image ReadFrame() override { return shown_; }

    /// What the next objects are counted against.
    RecordingGraphics& Books() { return books_; }

private:
    using Covers = std::function<bool(float x, float y)>;
    using ColorAt = std::function<Color(float x, float y)>;

    void Note(const char* call, std::initializer_list<float> numbers, const std::string& rest);
    /// Blends the colour over each pixel within bounds and clip whose centre is covered.
    void Paint(const RectF& bounds, const Covers& covers, const ColorAt& colorAt);
    bool FailObject();

    RecordingGraphics& books_;
    Image frame_;
    Image shown_;
    std::vector<std::string> calls_;
    struct Clip {
        RectF rect;
        float radius;
    };
    std::vector<Clip> clips_;
    int objectsBefore_;
};

}  // namespace Platform
