#pragma once

#include <cairo.h>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/geometry.h"
#include "platform/host/gui/cairo_bitmap.h"
#include "platform/host/gui/pango_layout.h"

/// A frame as the list of what is drawn in it. The target gathers the whole list before it paints:
/// by comparing it with the last one it knows which pixels can have changed, and paints only those.
namespace Platform::Host {

/// A brush as it was when something was drawn with it.
struct Paint {
    Color start{};
    Color end{};  ///< the same for one colour
    PointF from{};
    PointF to{};
    bool gradient = false;
    float opacity = 1.0F;
    bool operator==(const Paint&) const = default;
};

/// A clip and those around it, as a way from the innermost outwards.
struct Clip {
    RectF rect;
    float radius = 0.0F;
    std::shared_ptr<const Clip> outer;
};

bool SameClip(const Clip* one, const Clip* other);

enum class Shape : std::uint8_t {
    Everything,  ///< replaces all pixels
    Rectangle,
    RoundedRectangle,
    Ellipse,
    Line,  ///< from rect's left top to its right bottom
    Arc,   ///< of the circle in rect, from startDegrees on
    Bitmap,
    TiledBitmap,
    Mask,
    Text,  ///< from rect's left top
};

struct Command {
    Shape shape = Shape::Everything;
    RectF rect{};
    float radius = 0.0F;
    float stroke = 0.0F;  ///< 0 fills
    float startDegrees = 0.0F;
    float sweepDegrees = 0.0F;
    Paint paint{};
    std::shared_ptr<CairoBitmapPixels> bitmap{};
    std::uint64_t bitmapVersion = 0;
    std::shared_ptr<const PangoText> text{};
    std::shared_ptr<const Clip> clip{};

    bool operator==(const Command& other) const;
};

/// The whole pixels that the command can touch, within its clips and the target.
cairo_rectangle_int_t BoundsOf(const Command& command, Size target);

/// Paints those commands that touch the region, in order, and nothing beyond it.
void PaintCommands(cairo_t* context, const std::vector<Command>& commands,
                   const cairo_region_t* region, Size target);

}  // namespace Platform::Host
