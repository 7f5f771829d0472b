#pragma once

#include <memory>
#include <vector>

#include "platform/drawing.h"
#include "platform/host/gui/cairo_commands.h"
#include "platform/host/gui/frame_sink.h"

namespace Platform::Host {

/// Draws with Cairo into memory. A frame is gathered first and painted at its end, and only where
/// it differs from the frame before.
class CairoTarget final : public DrawTarget {
public:
    /// sink may be null; otherwise it has to outlive the target.
    CairoTarget(Size size, FrameSink* sink);

    bool IsValid() const;

    Size GetSize() const override { return size_; }
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
    Image ReadFrame() override;

private:
    void Add(Command command);
    void AddBitmap(Shape shape, const Bitmap& bitmap, const RectF& rect, const Paint& paint);
    /// What can differ from the frame before.
    CairoRegion FindChanges() const;

    Size size_;
    FrameSink* sink_;
    CairoSurface surface_;
    std::vector<Command> commands_;
    std::vector<Command> shown_;  ///< what the surface holds
    bool everythingChanged_ = true;
    bool presented_ = false;
    Presentation lastPresentation_;
    std::shared_ptr<const Clip> clip_;
};

}  // namespace Platform::Host
