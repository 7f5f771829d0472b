#pragma once

#include "platform/win32/gui/direct2d_objects.h"

/// Shapes as pixels with soft edges, computed here: for a Direct2D that draws them with hard edges
/// or not at all.
namespace Platform::Win32 {

enum class SoftKind : std::uint8_t { Rectangle, RoundedRectangle, Ellipse, Line, Arc };

struct SoftShape {
    SoftKind kind = SoftKind::Rectangle;
    RectF rect{};               ///< a line goes from the left top to the right bottom
    float radius = 0.0F;        ///< of the corners
    float stroke = 0.0F;        ///< 0 fills
    float startDegrees = 0.0F;  ///< of an arc of the circle in rect
    float sweepDegrees = 0.0F;
    bool operator==(const SoftShape&) const = default;
};

/// The whole pixels that the shape touches.
Rect BoundsOf(const SoftShape& shape);

SoftShape Moved(SoftShape shape, PointF by);

/// The shape in the paint, on clear ground: the pixels from (0, 0) on, as many as size says.
Image PaintShape(const SoftShape& shape, const Paint& paint, Size size);

}  // namespace Platform::Win32
