#include "platform/headless/recording_target.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/headless/recording_objects.h"
#include "platform/text.h"

namespace Platform {

namespace {

const RecordingPaint& PaintOf(const Brush& brush) {
    return dynamic_cast<const RecordingPaint&>(brush);
}

/// True on the points of the rectangle outside of its rounded corners.
bool InsideRounded(const RectF& rect, float radius, float x, float y) {
    if (x < rect.left || x >= rect.right || y < rect.top || y >= rect.bottom) return false;
    const float r = std::min({radius, rect.Width() / 2, rect.Height() / 2});
    const float dx = std::max({rect.left + r - x, x - (rect.right - r), 0.0F});
    const float dy = std::max({rect.top + r - y, y - (rect.bottom - r), 0.0F});
    return dx * dx + dy * dy <= r * r || r <= 0.0F;
}

bool InsideEllipse(PointF center, float radiusX, float radiusY, float x, float y) {
    if (radiusX <= 0 || radiusY <= 0) return false;
    const float dx = (x - center.x) / radiusX;
    const float dy = (y - center.y) / radiusY;
    return dx * dx + dy * dy <= 1.0F;
}

RectF Grown(const RectF& rect, float by) {
    return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

RectF Around(PointF center, float radiusX, float radiusY) {
    return {center.x - radiusX, center.y - radiusY, center.x + radiusX, center.y + radiusY};
}

}  // namespace

RecordingTarget::RecordingTarget(RecordingGraphics& books, Size size)
    : books_(books), frame_{size, {}}, objectsBefore_(books.liveObjects) {
    ++books_.liveTargets;
    frame_.pixels.resize(frame_.Stride() * static_cast<std::size_t>(size.height));
}

RecordingTarget::~RecordingTarget() {
    --books_.liveTargets;
    if (books_.liveObjects > objectsBefore_)
        books_.violations.emplace_back("a device object outlives its target");
}

void RecordingTarget::BeginFrame() {
    ++books_.framesBegun;
    calls_.clear();
}

GraphicsResult RecordingTarget::EndFrame(const Presentation* presentation) {
    if (!clips_.empty()) books_.violations.emplace_back("a clip is not popped");
    clips_.clear();
    if (books_.failFrames > 0) {
        --books_.failFrames;
        return GraphicsTargetLost;
    }
    books_.calls = calls_;
    if (presentation) books_.lastPresentation = *presentation;
    if (books_.recording) shown_ = frame_;
    return GraphicsOk;
}

void RecordingTarget::Note(const char* call, std::initializer_list<float> numbers,
                           const std::string& rest) {
    if (!books_.recording) return;
    std::string line = call;
    char separator = ' ';
    for (const float number : numbers) {
        line += separator + Number(number);
        separator = ',';
    }
    calls_.push_back(rest.empty() ? line : line + " " + rest);
}

void RecordingTarget::Paint(const RectF& bounds, const Covers& covers, const ColorAt& colorAt) {
    if (!books_.recording) return;
    RectF area{std::max(bounds.left, 0.0F), std::max(bounds.top, 0.0F),
               std::min(bounds.right, static_cast<float>(frame_.size.width)),
               std::min(bounds.bottom, static_cast<float>(frame_.size.height))};
    for (const auto& [clip, radius] : clips_)
        area = {std::max(area.left, clip.left), std::max(area.top, clip.top),
                std::min(area.right, clip.right), std::min(area.bottom, clip.bottom)};
    const auto isClipped = [this](float x, float y) {
        return !std::ranges::all_of(
            clips_, [&](const Clip& clip) { return InsideRounded(clip.rect, clip.radius, x, y); });
    };
    for (int row = static_cast<int>(std::floor(area.top)); static_cast<float>(row) < area.bottom;
         ++row) {
        for (int column = static_cast<int>(std::floor(area.left));
             static_cast<float>(column) < area.right; ++column) {
            const float x = static_cast<float>(column) + 0.5F;
            const float y = static_cast<float>(row) + 0.5F;
            const bool outside = x < area.left || x > area.right || y < area.top || y > area.bottom;
            if (outside || !covers(x, y) || isClipped(x, y)) continue;
            const Color color = colorAt(x, y);
            std::byte* pixel = frame_.pixels.data() +
                               static_cast<std::size_t>(row) * frame_.Stride() +
                               static_cast<std::size_t>(column) * 4;
            const float source[4] = {color.blue, color.green, color.red, 1.0F};
            for (int part = 0; part < 4; ++part) {
                const float below = static_cast<float>(std::to_integer<int>(pixel[part]));
                const float above = source[part] * color.alpha * 255.0F;
                pixel[part] = static_cast<std::byte>(
                    std::lround(std::clamp(above + below * (1.0F - color.alpha), 0.0F, 255.0F)));
            }
        }
    }
}

void RecordingTarget::Clear(Color color) {
    Note("Clear", {}, Hex(color));
    std::ranges::fill(frame_.pixels, std::byte{0});
    Paint(
        ToRectF({0, 0, frame_.size.width, frame_.size.height}), [](float, float) { return true; },
        [&](float, float) { return color; });
}

void RecordingTarget::FillRectangle(const RectF& rect, Brush& brush) {
    if (!books_.recording) return;
    const RecordingPaint& paint = PaintOf(brush);
    Note("FillRectangle", {rect.left, rect.top, rect.right, rect.bottom}, paint.Describe());
    Paint(
        rect, [](float, float) { return true; }, [&](float x, float y) { return paint.At(x, y); });
}

void RecordingTarget::FillRoundedRectangle(const RectF& rect, float radius, Brush& brush) {
    if (!books_.recording) return;
    const RecordingPaint& paint = PaintOf(brush);
    Note("FillRoundedRectangle", {rect.left, rect.top, rect.right, rect.bottom, radius},
         paint.Describe());
    Paint(
        rect, [&](float x, float y) { return InsideRounded(rect, radius, x, y); },
        [&](float x, float y) { return paint.At(x, y); });
}

void RecordingTarget::DrawRectangle(const RectF& rect, Brush& brush, float strokeWidth) {
    if (!books_.recording) return;
    const RecordingPaint& paint = PaintOf(brush);
    Note("DrawRectangle", {rect.left, rect.top, rect.right, rect.bottom, strokeWidth},
         paint.Describe());
    const RectF inner = Grown(rect, -strokeWidth / 2);
    Paint(
        Grown(rect, strokeWidth / 2),
        [&](float x, float y) { return !InsideRounded(inner, 0.0F, x, y); },
        [&](float x, float y) { return paint.At(x, y); });
}

void RecordingTarget::DrawRoundedRectangle(const RectF& rect, float radius, Brush& brush,
                                           float strokeWidth) {
    if (!books_.recording) return;
    const RecordingPaint& paint = PaintOf(brush);
    Note("DrawRoundedRectangle",
         {rect.left, rect.top, rect.right, rect.bottom, radius, strokeWidth}, paint.Describe());
    const float half = strokeWidth / 2;
    const RectF outer = Grown(rect, half);
    const RectF inner = Grown(rect, -half);
    Paint(
        outer,
        [&](float x, float y) {
            return InsideRounded(outer, radius + half, x, y) &&
                   !InsideRounded(inner, radius - half, x, y);
        },
        [&](float x, float y) { return paint.At(x, y); });
}

void RecordingTarget::FillEllipse(PointF center, float radiusX, float radiusY, Brush& brush) {
    if (!books_.recording) return;
    const RecordingPaint& paint = PaintOf(brush);
    Note("FillEllipse", {center.x, center.y, radiusX, radiusY}, paint.Describe());
    Paint(
        Around(center, radiusX, radiusY),
        [&](float x, float y) { return InsideEllipse(center, radiusX, radiusY, x, y); },
        [&](float x, float y) { return paint.At(x, y); });
}

void RecordingTarget::DrawEllipse(PointF center, float radiusX, float radiusY, Brush& brush,
                                  float strokeWidth) {
    if (!books_.recording) return;
    const RecordingPaint& paint = PaintOf(brush);
    Note("DrawEllipse", {center.x, center.y, radiusX, radiusY, strokeWidth}, paint.Describe());
    const float half = strokeWidth / 2;
    Paint(
        Around(center, radiusX + half, radiusY + half),
        [&](float x, float y) {
            return InsideEllipse(center, radiusX + half, radiusY + half, x, y) &&
                   !InsideEllipse(center, radiusX - half, radiusY - half, x, y);
        },
        [&](float x, float y) { return paint.At(x, y); });
}

void RecordingTarget::DrawLine(PointF from, PointF to, Brush& brush, float strokeWidth) {
    if (!books_.recording) return;
    const RecordingPaint& paint = PaintOf(brush);
    Note("DrawLine", {from.x, from.y, to.x, to.y, strokeWidth}, paint.Describe());
    const float half = strokeWidth / 2;
    const float dx = to.x - from.x;
    const float dy = to.y - from.y;
    const float length = std::hypot(dx, dy);
    if (length <= 0) return;
    const RectF bounds = Grown({std::min(from.x, to.x), std::min(from.y, to.y),
                                std::max(from.x, to.x), std::max(from.y, to.y)},
                               half);
    Paint(
        bounds,
        [&](float x, float y) {
            const float along = ((x - from.x) * dx + (y - from.y) * dy) / length;
            const float across = ((x - from.x) * dy - (y - from.y) * dx) / length;
            return along >= 0 && along <= length && std::abs(across) <= half;
        },
        [&](float x, float y) { return paint.At(x, y); });
}

void RecordingTarget::DrawArc(const Arc& arc, PointF center, float rotation, Brush& brush,
                              float strokeWidth) {
    if (!books_.recording) return;
    const auto& shape = dynamic_cast<const RecordingArc&>(arc);
    const RecordingPaint& paint = PaintOf(brush);
    Note("DrawArc",
         {center.x, center.y, shape.radius, shape.start, shape.sweep, rotation, strokeWidth},
         paint.Describe());
    const float half = strokeWidth / 2;
    const float outer = shape.radius + half;
    const auto isRoundEnd = [&](float x, float y, float degrees) {
        const float turn = degrees * std::numbers::pi_v<float> / 180.0F;
        return std::hypot(x - center.x - shape.radius * std::cos(turn),
                          y - center.y - shape.radius * std::sin(turn)) <= half;
    };
    Paint(
        Around(center, outer, outer),
        [&](float x, float y) {
            const float distance = std::hypot(x - center.x, y - center.y);
            if (std::abs(distance - shape.radius) > half) return false;
            float degrees =
                std::atan2(y - center.y, x - center.x) * 180.0F / std::numbers::pi_v<float>;
            const float start = rotation + shape.start;
            degrees = std::fmod(degrees - start + 1080.0F, 360.0F);
            return degrees <= shape.sweep || isRoundEnd(x, y, start) ||
                   isRoundEnd(x, y, start + shape.sweep);
        },
        [&](float x, float y) { return paint.At(x, y); });
}

void RecordingTarget::DrawBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) {
    if (!books_.recording) return;
    const auto& source = dynamic_cast<const RecordingBitmap&>(bitmap);
    Note("DrawBitmap", {rect.left, rect.top, rect.right, rect.bottom}, "*" + Number(opacity));
    Paint(
        rect, [](float, float) { return true; },
        [&](float x, float y) {
            Color color = source.At((x - rect.left) / rect.Width(), (y - rect.top) / rect.Height());
            color.alpha *= opacity;
            return color;
        });
}

void RecordingTarget::TileBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) {
    if (!books_.recording) return;
    const auto& source = dynamic_cast<const RecordingBitmap&>(bitmap);
    Note("TileBitmap", {rect.left, rect.top, rect.right, rect.bottom}, "*" + Number(opacity));
    const auto width = static_cast<float>(source.GetSize().width);
    const auto height = static_cast<float>(source.GetSize().height);
    Paint(
        rect, [](float, float) { return true; },
        [&](float x, float y) {
            Color color = source.At(std::fmod(x - rect.left, width) / width,
                                    std::fmod(y - rect.top, height) / height);
            color.alpha *= opacity;
            return color;
        });
}

void RecordingTarget::FillOpacityMask(const Bitmap& bitmap, const RectF& rect, Brush& brush) {
    if (!books_.recording) return;
    const auto& mask = dynamic_cast<const RecordingBitmap&>(bitmap);
    const RecordingPaint& paint = PaintOf(brush);
    Note("FillOpacityMask", {rect.left, rect.top, rect.right, rect.bottom}, paint.Describe());
    Paint(
        rect, [](float, float) { return true; },
        [&](float x, float y) {
            Color color = paint.At(x, y);
            color.alpha *=
                mask.At((x - rect.left) / rect.Width(), (y - rect.top) / rect.Height()).alpha;
            return color;
        });
}

void RecordingTarget::DrawTextLayout(PointF origin, const TextLayout& layout, Brush& brush) {
    if (!books_.recording) return;
    const auto& text = dynamic_cast<const RecordingTextLayout&>(layout);
    const RecordingPaint& paint = PaintOf(brush);
    Note("DrawTextLayout", {origin.x, origin.y},
         "\"" + Utf8FromWide(text.Text()) + "\" " + paint.Describe());
    for (const RecordingTextLayout::Cell& cell : text.Cells()) {
        if (cell.character == L' ') continue;
        const RectF box{origin.x + cell.box.left, origin.y + cell.box.top,
                        origin.x + cell.box.right - 1, origin.y + cell.box.bottom};
        Paint(
            box, [](float, float) { return true; },
            [&](float x, float y) { return paint.At(x, y); });
    }
}

void RecordingTarget::PushClip(const RectF& rect) {
    Note("PushClip", {rect.left, rect.top, rect.right, rect.bottom}, {});
    clips_.push_back({rect, 0.0F});
}

void RecordingTarget::PushRoundedClip(const RectF& rect, float radius) {
    Note("PushRoundedClip", {rect.left, rect.top, rect.right, rect.bottom, radius}, {});
    clips_.push_back({rect, radius});
}

void RecordingTarget::PopClip() {
    Note("PopClip", {}, {});
    if (clips_.empty()) {
        books_.violations.emplace_back("a clip is popped that was not pushed");
        return;
    }
    clips_.pop_back();
}

bool RecordingTarget::FailObject() {
    if (books_.failObjects <= 0) return false;
    --books_.failObjects;
    return true;
}

Created<Brush> RecordingTarget::CreateSolidBrush(Color color) {
    if (FailObject()) return GraphicsFailed;
    return std::make_unique<SolidRecordingBrush>(books_, color);
}

Created<GradientBrush> RecordingTarget::CreateGradientBrush(Color start, Color end) {
    if (FailObject()) return GraphicsFailed;
    return std::make_unique<GradientRecordingBrush>(books_, start, end);
}

Created<Bitmap> RecordingTarget::CreateBitmap(Size size, BitmapAlpha alpha) {
    if (FailObject()) return GraphicsFailed;
    Image image{size, {}};
    image.pixels.resize(image.Stride() * static_cast<std::size_t>(size.height));
    return std::make_unique<RecordingBitmap>(books_, std::move(image),
                                             alpha == BitmapAlpha::Ignore);
}

Created<Bitmap> RecordingTarget::CreateBitmap(const Image& image) {
    if (FailObject()) return GraphicsFailed;
    return std::make_unique<RecordingBitmap>(books_, image, false);
}

Created<Arc> RecordingTarget::CreateArc(float radius, float startDegrees, float sweepDegrees) {
    if (FailObject()) return GraphicsFailed;
    return std::make_unique<RecordingArc>(books_, radius, startDegrees, sweepDegrees);
}

}  // namespace Platform
