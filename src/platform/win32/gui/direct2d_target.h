#pragma once

#include <memory>
#include <vector>

#include "platform/drawing.h"
#include "platform/win32/gui/direct2d_objects.h"
#include "platform/win32/gui/surface.h"

namespace Platform::Win32 {

/// Draws with Direct2D, call by call.
class Direct2DTarget : public DrawTarget {
public:
    /// The factory outlives the target.
    Direct2DTarget(ID2D1Factory* factory, std::unique_ptr<Surface> surface);

    Size GetSize() const override { return surface_->GetSize(); }
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
    Image ReadFrame() override { return surface_->ReadPixels(); }

protected:
    ID2D1Factory* Factory() const { return factory_; }
    /// Where drawing goes now: the surface's own target unless it was led aside.
    ID2D1RenderTarget* Out() const { return out_; }
    void LeadTo(ID2D1RenderTarget* out) { out_ = out; }
    /// Begins drawing there.
    void StartDrawing();

private:
    Com<ID2D1Layer> PushLayer(const RectF& rect, float radius);

    ID2D1Factory* factory_;
    std::unique_ptr<Surface> surface_;
    ID2D1RenderTarget* out_;
    Com<ID2D1StrokeStyle> roundEnds_;
    std::vector<Com<ID2D1Layer>> clips_;  ///< null for a straight clip
};

}  // namespace Platform::Win32
