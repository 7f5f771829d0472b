#include "platform/host/gui/cairo_target.h"

#include <algorithm>
#include <cstring>

namespace Platform::Host {

namespace {

/// More separate parts than this are not worth the bookkeeping.
constexpr int MostChangedParts = 24;

class CairoSolidBrush final : public Brush {
public:
    explicit CairoSolidBrush(Color color) : paint{color, color, {}, {}, false, 1.0F} {}
    void SetOpacity(float opacity) override { paint.opacity = opacity; }
    Paint paint;
};

class CairoGradientBrush final : public GradientBrush {
public:
    CairoGradientBrush(Color start, Color end)
        : paint{start, end, {0.0F, 0.0F}, {0.0F, 1.0F}, true, 1.0F} {}
    void SetOpacity(float opacity) override { paint.opacity = opacity; }
    void SetPoints(PointF start, PointF end) override {
        paint.from = start;
        paint.to = end;
    }
    Paint paint;
};

class CairoArc final : public Arc {
public:
    CairoArc(float arcRadius, float start, float sweep)
        : radius(arcRadius), startDegrees(start), sweepDegrees(sweep) {}
    const float radius;
    const float startDegrees;
    const float sweepDegrees;
};

const Paint& PaintOf(const Brush& brush) {
    if (const auto* gradient = dynamic_cast<const CairoGradientBrush*>(&brush))
        return gradient->paint;
    return static_cast<const CairoSolidBrush&>(brush).paint;
}

RectF Around(PointF center, float radiusX, float radiusY) {
    return {center.x - radiusX, center.y - radiusY, center.x + radiusX, center.y + radiusY};
}

}  // namespace

CairoTarget::CairoTarget(Size size, FrameSink* sink)
    : size_(size),
      sink_(sink),
      surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size.width, size.height)) {}

bool CairoTarget::IsValid() const {
    return cairo_surface_status(surface_.get()) == CAIRO_STATUS_SUCCESS;
}

void CairoTarget::BeginFrame() {
    commands_.clear();
    clip_.reset();
}

CairoRegion CairoTarget::FindChanges() const {
    CairoRegion region(cairo_region_create());
    const auto add = [&](const Command& command) {
        const cairo_rectangle_int_t bounds = BoundsOf(command, size_);
        cairo_region_union_rectangle(region.get(), &bounds);
    };
    if (everythingChanged_) {
        const cairo_rectangle_int_t all{0, 0, size_.width, size_.height};
        cairo_region_union_rectangle(region.get(), &all);
        return region;
    }
    // Frames are mostly alike: what is equal at both ends is left out, and a middle of the same
    // length is compared one by one.
    const auto [newFirst, oldFirst] = std::ranges::mismatch(commands_, shown_);
    auto newLast = commands_.end();
    auto oldLast = shown_.end();
    while (newLast != newFirst && oldLast != oldFirst && *(newLast - 1) == *(oldLast - 1)) {
        --newLast;
        --oldLast;
    }
    const bool sameLength = newLast - newFirst == oldLast - oldFirst;
    auto old = oldFirst;
    for (auto command = newFirst; command != newLast; ++command) {
        if (sameLength && *command == *old++) continue;
        add(*command);
        if (sameLength) add(*(old - 1));
    }
    if (!sameLength) std::for_each(oldFirst, oldLast, add);
    if (cairo_region_num_rectangles(region.get()) > MostChangedParts) {
        cairo_rectangle_int_t all;
        cairo_region_get_extents(region.get(), &all);
        cairo_region_union_rectangle(region.get(), &all);
    }
    return region;
}

GraphicsResult CairoTarget::EndFrame(const Presentation* presentation) {
    const CairoRegion changes = FindChanges();
    if (!cairo_region_is_empty(changes.get())) {
        const CairoContext context(cairo_create(surface_.get()));
        PaintCommands(context.get(), commands_, changes.get(), size_);
        if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS) {
            everythingChanged_ = true;
            return GraphicsOutOfMemory;
        }
        cairo_surface_flush(surface_.get());
        shown_.swap(commands_);
        everythingChanged_ = false;
    }
    if (!sink_ || !presentation) {
        // The sink has not seen these changes.
        presented_ = presented_ && cairo_region_is_empty(changes.get());
        return GraphicsOk;
    }
    const bool lost = sink_->TakeLoss();
    const bool asBefore = !lost && presented_ && lastPresentation_.opacity == presentation->opacity;
    if (asBefore && cairo_region_is_empty(changes.get())) return GraphicsOk;
    const cairo_rectangle_int_t all{0, 0, size_.width, size_.height};
    if (!asBefore) cairo_region_union_rectangle(changes.get(), &all);
    const GraphicsResult result = sink_->ShowFrame(
        reinterpret_cast<const std::byte*>(cairo_image_surface_get_data(surface_.get())),
        static_cast<std::size_t>(cairo_image_surface_get_stride(surface_.get())), size_,
        changes.get(), *presentation);
    presented_ = result == GraphicsOk;
    lastPresentation_ = *presentation;
    return result;
}

void CairoTarget::Add(Command command) {
    command.clip = clip_;
    commands_.push_back(std::move(command));
}

void CairoTarget::Clear(Color color) {
    commands_.clear();
    Add({.shape = Shape::Everything, .paint = {color, color, {}, {}, false, 1.0F}});
}

void CairoTarget::FillRectangle(const RectF& rect, Brush& brush) {
    Add({.shape = Shape::Rectangle, .rect = rect, .paint = PaintOf(brush)});
}

void CairoTarget::FillRoundedRectangle(const RectF& rect, float radius, Brush& brush) {
    Add({.shape = Shape::RoundedRectangle,
         .rect = rect,
         .radius = radius,
         .paint = PaintOf(brush)});
}

void CairoTarget::DrawRectangle(const RectF& rect, Brush& brush, float strokeWidth) {
    Add({.shape = Shape::Rectangle, .rect = rect, .stroke = strokeWidth, .paint = PaintOf(brush)});
}

void CairoTarget::DrawRoundedRectangle(const RectF& rect, float radius, Brush& brush,
                                       float strokeWidth) {
    Add({.shape = Shape::RoundedRectangle,
         .rect = rect,
         .radius = radius,
         .stroke = strokeWidth,
         .paint = PaintOf(brush)});
}

void CairoTarget::FillEllipse(PointF center, float radiusX, float radiusY, Brush& brush) {
    Add({.shape = Shape::Ellipse,
         .rect = Around(center, radiusX, radiusY),
         .paint = PaintOf(brush)});
}

void CairoTarget::DrawEllipse(PointF center, float radiusX, float radiusY, Brush& brush,
                              float strokeWidth) {
    Add({.shape = Shape::Ellipse,
         .rect = Around(center, radiusX, radiusY),
         .stroke = strokeWidth,
         .paint = PaintOf(brush)});
}

void CairoTarget::DrawLine(PointF from, PointF to, Brush& brush, float strokeWidth) {
    Add({.shape = Shape::Line,
         .rect = {from.x, from.y, to.x, to.y},
         .stroke = strokeWidth,
         .paint = PaintOf(brush)});
}

void CairoTarget::DrawArc(const Arc& arc, PointF center, float rotation, Brush& brush,
                          float strokeWidth) {
    const auto& shape = static_cast<const CairoArc&>(arc);
    Add({.shape = Shape::Arc,
         .rect = Around(center, shape.radius, shape.radius),
         .stroke = strokeWidth,
         .startDegrees = shape.startDegrees + rotation,
         .sweepDegrees = shape.sweepDegrees,
         .paint = PaintOf(brush)});
}

void CairoTarget::AddBitmap(Shape shape, const Bitmap& bitmap, const RectF& rect,
                            const Paint& paint) {
    if (rect.Width() <= 0.0F || rect.Height() <= 0.0F) return;
    const auto& pixels = static_cast<const CairoBitmap&>(bitmap).Pixels();
    Add({.shape = shape,
         .rect = rect,
         .paint = paint,
         .bitmap = pixels,
         .bitmapVersion = pixels->Version()});
}

void CairoTarget::DrawBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) {
    AddBitmap(Shape::Bitmap, bitmap, rect, {.opacity = opacity});
}

void CairoTarget::TileBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) {
    AddBitmap(Shape::TiledBitmap, bitmap, rect, {.opacity = opacity});
}

void CairoTarget::FillOpacityMask(const Bitmap& bitmap, const RectF& rect, Brush& brush) {
    AddBitmap(Shape::Mask, bitmap, rect, PaintOf(brush));
}

void CairoTarget::DrawTextLayout(PointF origin, const TextLayout& layout, Brush& brush) {
    Add({.shape = Shape::Text,
         .rect = {origin.x, origin.y, origin.x, origin.y},
         .paint = PaintOf(brush),
         .text = static_cast<const PangoTextLayout&>(layout).GetText()});
}

void CairoTarget::PushClip(const RectF& rect) {
    PushRoundedClip(rect, 0.0F);
}

void CairoTarget::PushRoundedClip(const RectF& rect, float radius) {
    clip_ = std::make_shared<const Clip>(Clip{rect, radius, clip_});
}

void CairoTarget::PopClip() {
    if (clip_) clip_ = clip_->outer;
}

Created<Brush> CairoTarget::CreateSolidBrush(Color color) {
    return std::make_unique<CairoSolidBrush>(color);
}

Created<GradientBrush> CairoTarget::CreateGradientBrush(Color start, Color end) {
    return std::make_unique<CairoGradientBrush>(start, end);
}

Created<Bitmap> CairoTarget::CreateBitmap(Size size, BitmapAlpha alpha) {
    auto pixels = std::make_shared<CairoBitmapPixels>(size, alpha);
    if (!pixels->IsValid()) return GraphicsOutOfMemory;
    return std::make_unique<CairoBitmap>(std::move(pixels));
}

Created<Bitmap> CairoTarget::CreateBitmap(const Image& image) {
    Created<Bitmap> made = CreateBitmap(image.size, BitmapAlpha::Premultiplied);
    if (made) made.result = made.object->Write(image.pixels, image.Stride());
    if (made.result != GraphicsOk) return made.result;
    return made;
}

Created<Arc> CairoTarget::CreateArc(float radius, float startDegrees, float sweepDegrees) {
    return std::make_unique<CairoArc>(radius, startDegrees, sweepDegrees);
}

Image CairoTarget::ReadFrame() {
    Image image{size_, {}};
    image.pixels.resize(image.Stride() * static_cast<std::size_t>(size_.height));
    const unsigned char* from = cairo_image_surface_get_data(surface_.get());
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface_.get()));
    for (std::size_t y = 0; y < static_cast<std::size_t>(size_.height); ++y)
        std::memcpy(image.pixels.data() + y * image.Stride(), from + y * stride, image.Stride());
    return image;
}

}  // namespace Platform::Host
