#pragma once

#include <d2d1.h>

#include "platform/drawing.h"
#include "platform/win32/gui/com.h"

/// The device objects of a Direct2D target.
namespace Platform::Win32 {

constexpr D2D1_RECT_F ToNative(const RectF& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

constexpr D2D1_POINT_2F ToNative(PointF point) {
    return {point.x, point.y};
}

constexpr D2D1_COLOR_F ToNative(Color color) {
    return {color.red, color.green, color.blue, color.alpha};
}

/// A brush's colours, as far as they do not change from call to call.
struct Paint {
    Color start{};
    Color end{};
    PointF from{};
    PointF to{};
    bool gradient = false;
    bool operator==(const Paint&) const = default;
};

/// What both kinds of brush share here.
class NativeBrush {
public:
    virtual ~NativeBrush() = default;
    virtual ID2D1Brush* Get() const = 0;
    virtual const Paint& GetPaint() const = 0;
};

class SolidBrush final : public Brush, public NativeBrush {
public:
    SolidBrush(Com<ID2D1SolidColorBrush> brush, Color color)
        : brush_(std::move(brush)), paint_{.start = color, .end = color} {}
    void SetOpacity(float opacity) override { brush_->SetOpacity(opacity); }
    ID2D1Brush* Get() const override { return brush_.Get(); }
    const Paint& GetPaint() const override { return paint_; }

private:
    Com<ID2D1SolidColorBrush> brush_;
    Paint paint_;
};

class LinearBrush final : public GradientBrush, public NativeBrush {
public:
    LinearBrush(Com<ID2D1LinearGradientBrush> brush, const Paint& paint)
        : brush_(std::move(brush)), paint_(paint) {}
    void SetOpacity(float opacity) override { brush_->SetOpacity(opacity); }
    void SetPoints(PointF start, PointF end) override {
        paint_.from = start;
        paint_.to = end;
        brush_->SetStartPoint(ToNative(start));
        brush_->SetEndPoint(ToNative(end));
    }
    ID2D1Brush* Get() const override { return brush_.Get(); }
    const Paint& GetPaint() const override { return paint_; }

private:
    Com<ID2D1LinearGradientBrush> brush_;
    Paint paint_;
};

inline const NativeBrush& NativeOf(const Brush& brush) {
    return dynamic_cast<const NativeBrush&>(brush);
}

class NativeBitmap final : public Bitmap {
public:
    NativeBitmap(Com<ID2D1Bitmap> bitmap, Size size) : bitmap_(std::move(bitmap)), size_(size) {}
    Size GetSize() const override { return size_; }
    GraphicsResult Write(std::span<const std::byte> pixels, std::size_t stride) override;
    ID2D1Bitmap* Get() const { return bitmap_.Get(); }

private:
    Com<ID2D1Bitmap> bitmap_;
    Size size_;
};

inline ID2D1Bitmap* NativeOf(const Bitmap& bitmap) {
    return static_cast<const NativeBitmap&>(bitmap).Get();
}

class NativeArc final : public Arc {
public:
    NativeArc(Com<ID2D1PathGeometry> path, float arcRadius, float start, float sweep)
        : geometry(std::move(path)), radius(arcRadius), startDegrees(start), sweepDegrees(sweep) {}
    const Com<ID2D1PathGeometry> geometry;
    const float radius;
    const float startDegrees;
    const float sweepDegrees;
};

}  // namespace Platform::Win32
