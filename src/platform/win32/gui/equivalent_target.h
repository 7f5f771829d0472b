#pragma once

#include <cstdint>

#include "platform/win32/gui/direct2d_target.h"
#include "platform/win32/gui/soft_shape.h"

namespace Platform::Win32 {

/// Draws with a Direct2D that lacks soft edges, arcs, layers and opacity masks, as that of Wine
/// does: what it would draw wrongly is drawn by other means to the same effect. Shapes become
/// bitmaps, which are kept while they are shown; a rounded clip leads the drawing aside and lets it
/// back through a mask.
class EquivalentTarget final : public Direct2DTarget {
public:
    /// Frames are cut to a rectangle with such round corners: a window's region does not do it
    /// there. The radius is in pixels; 0 leaves them as they are.
    EquivalentTarget(ID2D1Factory* factory, std::unique_ptr<Surface> surface, float cornerRadius)
        : Direct2DTarget(factory, std::move(surface)), cornerRadius_(cornerRadius) {}

    void BeginFrame() override;
    GraphicsResult EndFrame(const Presentation* presentation) override;
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
    void FillOpacityMask(const Bitmap& bitmap, const RectF& rect, Brush& brush) override;
    void PushClip(const RectF& rect) override;
    void PushRoundedClip(const RectF& rect, float radius) override;
    void PopClip() override;

private:
    /// A shape that was painted, or the visible part of one; coordinates count from its corner.
    struct Painted {
        SoftShape shape;
        Paint paint;
        Size size;
        Com<ID2D1Bitmap> bitmap;
        std::uint64_t lastFrame = 0;
    };
    /// A clip that is open.
    struct OpenClip {
        ID2D1RenderTarget* around = nullptr;    ///< where the drawing goes on afterwards
        Com<ID2D1BitmapRenderTarget> inside{};  ///< null for a straight clip
        SoftShape shape{};
    };

    void DrawShape(const SoftShape& shape, Brush& brush);
    /// The part's pixels; null when they cannot be had.
    ID2D1Bitmap* PaintedShape(const SoftShape& shape, const Paint& paint, const Rect& part);
    /// The pixels of a shape that can be seen; no width or no height when there are none.
    Rect VisiblePart(const SoftShape& shape) const;
    Com<ID2D1BitmapRenderTarget> TakeAside();
    void FillThrough(const RectF& rect, ID2D1BitmapBrush* content, ID2D1BitmapBrush* mask);
    /// The bitmap stretched over rect.
    Com<ID2D1BitmapBrush> MakeBrush(ID2D1Bitmap* bitmap, const RectF& rect, float opacity);

    const float cornerRadius_;
    std::vector<Painted> painted_;
    std::vector<Com<ID2D1BitmapRenderTarget>> asides_;  ///< free ones
    std::vector<OpenClip> open_;
    std::uint64_t frame_ = 0;
};

}  // namespace Platform::Win32
