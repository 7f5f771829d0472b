#include "platform/win32/gui/soft_shape.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Platform::Win32 {

namespace {

/// How much of the pixel about center lies between from and to, in one direction.
float Overlap(float from, float to, float center) {
    return std::clamp(std::min(to, center + 0.5F) - std::max(from, center - 0.5F), 0.0F, 1.0F);
}

/// How much of a pixel is inside whose centre lies so far outside the edge.
float Inside(float distance) {
    return std::clamp(0.5F - distance, 0.0F, 1.0F);
}

RectF Grown(const RectF& rect, float by) {
    return {rect.left - by, rect.top - by, rect.right + by, rect.bottom + by};
}

float InRectangle(const RectF& rect, PointF at) {
    return Overlap(rect.left, rect.right, at.x) * Overlap(rect.top, rect.bottom, at.y);
}

float InRoundedRectangle(const RectF& rect, float radius, PointF at) {
    const float halfWidth = rect.Width() / 2.0F;
    const float halfHeight = rect.Height() / 2.0F;
    if (halfWidth <= 0.0F || halfHeight <= 0.0F) return 0.0F;
    const float r = std::min({radius, halfWidth, halfHeight});
    if (r <= 0.0F) return InRectangle(rect, at);
    const float dx = std::abs(at.x - rect.left - halfWidth) - halfWidth + r;
    const float dy = std::abs(at.y - rect.top - halfHeight) - halfHeight + r;
    if (dx <= 0.0F || dy <= 0.0F) return InRectangle(rect, at);
    return Inside(std::hypot(dx, dy) - r);
}

float InEllipse(const RectF& rect, PointF at) {
    const float radiusX = rect.Width() / 2.0F;
    const float radiusY = rect.Height() / 2.0F;
    if (radiusX <= 0.0F || radiusY <= 0.0F) return 0.0F;
    const float x = (at.x - rect.left - radiusX) / radiusX;
    const float y = (at.y - rect.top - radiusY) / radiusY;
    const float reach = std::hypot(x, y);
    const float slope = std::hypot(x / radiusX, y / radiusY);
    // Near the edge this is the distance to it; at the centre nothing is near.
    return slope <= 0.0F ? 1.0F : Inside(reach * (reach - 1.0F) / slope);
}

float InLine(const SoftShape& line, PointF at) {
    const float dx = line.rect.Width();
    const float dy = line.rect.Height();
    const float length = std::hypot(dx, dy);
    if (length <= 0.0F) return 0.0F;
    const PointF rel{at.x - line.rect.left, at.y - line.rect.top};
    const float along = (rel.x * dx + rel.y * dy) / length;
    const float across = (rel.y * dx - rel.x * dy) / length;
    return Overlap(0.0F, length, along) * Overlap(-line.stroke / 2.0F, line.stroke / 2.0F, across);
}

float InArc(const SoftShape& arc, PointF at) {
    constexpr float DegreesToRadians = std::numbers::pi_v<float> / 180.0F;
    const float radius = arc.rect.Width() / 2.0F;
    const PointF rel{at.x - arc.rect.left - radius, at.y - arc.rect.top - radius};
    float turned = std::atan2(rel.y, rel.x) / DegreesToRadians - arc.startDegrees;
    turned -= 360.0F * std::floor(turned / 360.0F);
    if (turned <= arc.sweepDegrees)
        return Inside(std::abs(std::hypot(rel.x, rel.y) - radius) - arc.stroke / 2.0F);
    const auto fromEnd = [&](float degrees) {
        const float angle = degrees * DegreesToRadians;
        return std::hypot(rel.x - radius * std::cos(angle), rel.y - radius * std::sin(angle));
    };
    const float nearest =
        std::min(fromEnd(arc.startDegrees), fromEnd(arc.startDegrees + arc.sweepDegrees));
    return Inside(nearest - arc.stroke / 2.0F);
}

float InFilled(const SoftShape& shape, float grown, PointF at) {
    const RectF rect = Grown(shape.rect, grown);
    if (rect.Width() <= 0.0F || rect.Height() <= 0.0F) return 0.0F;
    switch (shape.kind) {
        case SoftKind::RoundedRectangle:
            return InRoundedRectangle(rect, std::max(0.0F, shape.radius + grown), at);
        case SoftKind::Ellipse:
            return InEllipse(rect, at);
        default:
            return InRectangle(rect, at);
    }
}

/// How much of the pixel about a point the shape covers.
float CoverageAt(const SoftShape& shape, PointF at) {
    if (shape.kind == SoftKind::Line) return InLine(shape, at);
    if (shape.kind == SoftKind::Arc) return InArc(shape, at);
    if (shape.stroke <= 0.0F) return InFilled(shape, 0.0F, at);
    const float half = shape.stroke / 2.0F;
    return std::max(0.0F, InFilled(shape, half, at) - InFilled(shape, -half, at));
}

Color ColorAt(const Paint& paint, PointF at) {
    if (!paint.gradient) return paint.start;
    const float dx = paint.to.x - paint.from.x;
    const float dy = paint.to.y - paint.from.y;
    const float length = dx * dx + dy * dy;
    const float along = (at.x - paint.from.x) * dx + (at.y - paint.from.y) * dy;
    const float part = length > 0.0F ? std::clamp(along / length, 0.0F, 1.0F) : 1.0F;
    const auto mix = [part](float start, float end) { return start + (end - start) * part; };
    return {mix(paint.start.red, paint.end.red), mix(paint.start.green, paint.end.green),
            mix(paint.start.blue, paint.end.blue), mix(paint.start.alpha, paint.end.alpha)};
}

std::byte ToByte(float part) {
    return static_cast<std::byte>(std::lround(std::clamp(part, 0.0F, 1.0F) * 255.0F));
}

}  // namespace

Rect BoundsOf(const SoftShape& shape) {
    const RectF& rect = shape.rect;
    // A line's ends are straight, but it may lie at any angle.
    const float margin = shape.stroke / 2.0F;
    const auto low = [margin](float one, float other) {
        return static_cast<int>(std::floor(std::min(one, other) - margin));
    };
    const auto high = [margin](float one, float other) {
        return static_cast<int>(std::ceil(std::max(one, other) + margin));
    };
    return {low(rect.left, rect.right), low(rect.top, rect.bottom), high(rect.left, rect.right),
            high(rect.top, rect.bottom)};
}

SoftShape Moved(SoftShape shape, PointF by) {
    shape.rect = {shape.rect.left + by.x, shape.rect.top + by.y, shape.rect.right + by.x,
                  shape.rect.bottom + by.y};
    return shape;
}

Image PaintShape(const SoftShape& shape, const Paint& paint, Size size) {
    Image image{size, {}};
    image.pixels.reserve(image.Stride() * static_cast<std::size_t>(size.height));
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const PointF at{static_cast<float>(x) + 0.5F, static_cast<float>(y) + 0.5F};
            const Color color = ColorAt(paint, at);
            const float alpha = color.alpha * CoverageAt(shape, at);
            for (const float part : {color.blue * alpha, color.green * alpha, color.red * alpha})
                image.pixels.push_back(ToByte(part));
            image.pixels.push_back(ToByte(alpha));
        }
    }
    return image;
}

}  // namespace Platform::Win32
