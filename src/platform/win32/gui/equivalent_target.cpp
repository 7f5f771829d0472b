#include "platform/win32/gui/equivalent_target.h"

#include <algorithm>
#include <cmath>
#include <d2d1helper.h>

namespace Platform::Win32 {

namespace {

/// Bitmaps of shapes that were not shown for so many frames are given up.
constexpr std::uint64_t FramesKept = 60;

bool IsWhole(const RectF& rect) {
    return rect.left == std::floor(rect.left) && rect.top == std::floor(rect.top) &&
           rect.right == std::floor(rect.right) && rect.bottom == std::floor(rect.bottom);
}

RectF Around(PointF center, float radiusX, float radiusY) {
    return {center.x - radiusX, center.y - radiusY, center.x + radiusX, center.y + radiusY};
}

Paint Moved(Paint paint, PointF by) {
    if (!paint.gradient) return paint;
    paint.from = {paint.from.x + by.x, paint.from.y + by.y};
    paint.to = {paint.to.x + by.x, paint.to.y + by.y};
    return paint;
}

}  // namespace

void EquivalentTarget::BeginFrame() {
    ++frame_;
    std::erase_if(painted_, [this](const Painted& painted) {
        return painted.lastFrame + FramesKept < frame_;
    });
    open_.clear();
    Direct2DTarget::BeginFrame();
    if (cornerRadius_ <= 0.0F) return;
    Clear({});
    PushRoundedClip(ToRectF({0, 0, GetSize().width, GetSize().height}), cornerRadius_);
}

GraphicsResult EquivalentTarget::EndFrame(const Presentation* presentation) {
    while (!open_.empty())
        PopClip();
    return Direct2DTarget::EndFrame(presentation);
}

Rect EquivalentTarget::VisiblePart(const SoftShape& shape) const {
    const Rect bounds = BoundsOf(shape);
    const Size size = GetSize();
    return {std::max(bounds.left, 0), std::max(bounds.top, 0), std::min(bounds.right, size.width),
            std::min(bounds.bottom, size.height)};
}

ID2D1Bitmap* EquivalentTarget::PaintedShape(const SoftShape& shape, const Paint& paint,
                                            const Rect& part) {
    const Size size{part.right - part.left, part.bottom - part.top};
    if (size.width < 1 || size.height < 1) return nullptr;
    const PointF toCorner{-static_cast<float>(part.left), -static_cast<float>(part.top)};
    Painted wanted{Moved(shape, toCorner), Moved(paint, toCorner), size, nullptr, frame_};
    const auto known = std::ranges::find_if(painted_, [&](const Painted& painted) {
        return painted.size == size && painted.shape == wanted.shape &&
               painted.paint == wanted.paint;
    });
    if (known != painted_.end()) {
        known->lastFrame = frame_;
        return known->bitmap.Get();
    }
    const Created<Bitmap> made = CreateBitmap(PaintShape(wanted.shape, wanted.paint, size));
    if (!made) return nullptr;
    wanted.bitmap = NativeOf(*made.object);
    return painted_.emplace_back(std::move(wanted)).bitmap.Get();
}

void EquivalentTarget::DrawShape(const SoftShape& shape, Brush& brush) {
    const Rect part = VisiblePart(shape);
    const NativeBrush& native = NativeOf(brush);
    ID2D1Bitmap* bitmap = PaintedShape(shape, native.GetPaint(), part);
    if (!bitmap) return;
    Out()->DrawBitmap(bitmap, ToNative(ToRectF(part)), native.Get()->GetOpacity(),
                      D2D1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR);
}

void EquivalentTarget::FillRectangle(const RectF& rect, Brush& brush) {
    if (IsWhole(rect)) return Direct2DTarget::FillRectangle(rect, brush);
    DrawShape({.kind = SoftKind::Rectangle, .rect = rect}, brush);
}

void EquivalentTarget::FillRoundedRectangle(const RectF& rect, float radius, Brush& brush) {
    DrawShape({.kind = SoftKind::RoundedRectangle, .rect = rect, .radius = radius}, brush);
}

void EquivalentTarget::DrawRectangle(const RectF& rect, Brush& brush, float strokeWidth) {
    DrawShape({.kind = SoftKind::Rectangle, .rect = rect, .stroke = strokeWidth}, brush);
}

void EquivalentTarget::DrawRoundedRectangle(const RectF& rect, float radius, Brush& brush,
                                            float strokeWidth) {
    DrawShape(
        {.kind = SoftKind::RoundedRectangle, .rect = rect, .radius = radius, .stroke = strokeWidth},
        brush);
}

void EquivalentTarget::FillEllipse(PointF center, float radiusX, float radiusY, Brush& brush) {
    DrawShape({.kind = SoftKind::Ellipse, .rect = Around(center, radiusX, radiusY)}, brush);
}

void EquivalentTarget::DrawEllipse(PointF center, float radiusX, float radiusY, Brush& brush,
                                   float strokeWidth) {
    DrawShape({.kind = SoftKind::Ellipse,
               .rect = Around(center, radiusX, radiusY),
               .stroke = strokeWidth},
              brush);
}

void EquivalentTarget::DrawLine(PointF from, PointF to, Brush& brush, float strokeWidth) {
    DrawShape({.kind = SoftKind::Line, .rect = {from.x, from.y, to.x, to.y}, .stroke = strokeWidth},
              brush);
}

void EquivalentTarget::DrawArc(const Arc& arc, PointF center, float rotation, Brush& brush,
                               float strokeWidth) {
    const auto& native = static_cast<const NativeArc&>(arc);
    DrawShape({.kind = SoftKind::Arc,
               .rect = Around(center, native.radius, native.radius),
               .stroke = strokeWidth,
               .startDegrees = native.startDegrees + rotation,
               .sweepDegrees = native.sweepDegrees},
              brush);
}

Com<ID2D1BitmapBrush> EquivalentTarget::MakeBrush(ID2D1Bitmap* bitmap, const RectF& rect,
                                                  float opacity) {
    using D2D1::Matrix3x2F;
    const D2D1_SIZE_U size = bitmap->GetPixelSize();
    const auto placed =
        Matrix3x2F::Scale(D2D1::SizeF(rect.Width() / static_cast<float>(size.width),
                                      rect.Height() / static_cast<float>(size.height))) *
        Matrix3x2F::Translation(rect.left, rect.top);
    Com<ID2D1BitmapBrush> brush;
    if (FAILED(Out()->CreateBitmapBrush(bitmap, D2D1::BitmapBrushProperties(),
                                        D2D1::BrushProperties(opacity, placed),
                                        brush.GetAddressOf())))
        return nullptr;
    return brush;
}

void EquivalentTarget::FillThrough(const RectF& rect, ID2D1BitmapBrush* content,
                                   ID2D1BitmapBrush* mask) {
    Com<ID2D1RectangleGeometry> geometry;
    if (!content || !mask ||
        FAILED(Factory()->CreateRectangleGeometry(ToNative(rect), geometry.GetAddressOf())))
        return;
    Out()->FillGeometry(geometry.Get(), content, mask);
}

void EquivalentTarget::FillOpacityMask(const Bitmap& bitmap, const RectF& rect, Brush& brush) {
    if (rect.Width() <= 0.0F || rect.Height() <= 0.0F) return;
    const NativeBrush& native = NativeOf(brush);
    const Paint& paint = native.GetPaint();
    // One pixel tells all of a single colour.
    const SoftShape ground{.rect = paint.gradient ? ToRectF(BoundsOf({.rect = rect}))
                                                  : RectF{0.0F, 0.0F, 1.0F, 1.0F}};
    const Rect part = VisiblePart(ground);
    ID2D1Bitmap* colors = PaintedShape(ground, paint, part);
    if (!colors) return;
    FillThrough(rect, MakeBrush(colors, ToRectF(part), native.Get()->GetOpacity()).Get(),
                MakeBrush(NativeOf(bitmap), rect, 1.0F).Get());
}

void EquivalentTarget::PushClip(const RectF& rect) {
    open_.push_back({.around = Out()});
    Direct2DTarget::PushClip(rect);
}

Com<ID2D1BitmapRenderTarget> EquivalentTarget::TakeAside() {
    Com<ID2D1BitmapRenderTarget> aside;
    if (!asides_.empty()) {
        aside = std::move(asides_.back());
        asides_.pop_back();
    } else if (SUCCEEDED(Out()->CreateCompatibleRenderTarget(aside.GetAddressOf()))) {
        aside->SetTextAntialiasMode(D2D1_TEXT_ANTIALIAS_MODE_GRAYSCALE);
    }
    return aside;
}

void EquivalentTarget::PushRoundedClip(const RectF& rect, float radius) {
    Com<ID2D1BitmapRenderTarget> aside = TakeAside();
    if (!aside) return PushClip(rect);
    ID2D1RenderTarget* inside = aside.Get();
    open_.push_back(
        {.around = Out(),
         .inside = std::move(aside),
         .shape = {.kind = SoftKind::RoundedRectangle, .rect = rect, .radius = radius}});
    LeadTo(inside);
    StartDrawing();
    Clear({});
}

void EquivalentTarget::PopClip() {
    if (open_.empty()) return;
    const OpenClip clip = std::move(open_.back());
    open_.pop_back();
    if (!clip.inside) return Direct2DTarget::PopClip();
    Com<ID2D1Bitmap> content;
    const bool drawn = SUCCEEDED(clip.inside->EndDraw()) &&
                       SUCCEEDED(clip.inside->GetBitmap(content.GetAddressOf()));
    LeadTo(clip.around);
    asides_.push_back(clip.inside);
    constexpr Color White{1.0F, 1.0F, 1.0F, 1.0F};
    const Rect part = VisiblePart(clip.shape);
    ID2D1Bitmap* mask = PaintedShape(clip.shape, {.start = White, .end = White}, part);
    if (!drawn || !mask) return;
    const RectF seen = ToRectF(part);
    const Rect all{0, 0, GetSize().width, GetSize().height};
    FillThrough(seen, MakeBrush(content.Get(), ToRectF(all), 1.0F).Get(),
                MakeBrush(mask, seen, 1.0F).Get());
}

}  // namespace Platform::Win32
