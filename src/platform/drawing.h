#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/created.h"
#include "platform/geometry.h"
#include "platform/image_codec.h"
#include "platform/text_layout.h"

/// Drawing, immediate and small: each call names its brush; only the clips are state.
///
/// Coordinates are pixels of the target, whatever the screen's resolution. Brushes, bitmaps and
/// arcs are device objects: they belong to the target that made them, may be used with no other,
/// and have to be gone before it. All calls on a target and its objects come from one thread at a
/// time.
namespace Platform {

class Brush {
public:
    virtual ~Brush() = default;
    /// Multiplies the brush's own alpha; 1.0 at first.
    virtual void SetOpacity(float opacity) = 0;
};

/// From the start colour to the end colour, beyond the two points the colours go on.
class GradientBrush : public Brush {
public:
    /// (0, 0) and (0, 1) at first.
    virtual void SetPoints(PointF start, PointF end) = 0;
};

enum class BitmapAlpha : std::uint8_t { Premultiplied, Ignore };

class Bitmap {
public:
    virtual ~Bitmap() = default;
    virtual Size GetSize() const = 0;
    /// Replaces all pixels; stride is the bytes from one row to the next, at least width * 4.
    [[nodiscard]] virtual GraphicsResult Write(std::span<const std::byte> pixels,
                                               std::size_t stride) = 0;
};

/// An open part of a circle about (0, 0), prepared once and drawn many times.
class Arc {
public:
    virtual ~Arc() = default;
};

/// How a finished frame gets on the screen.
struct Presentation {
    float opacity = 1.0F;                   ///< of the whole window
    std::optional<std::uint32_t> colorKey;  ///< 0x00BBGGRR: pixels of it become clear; may be
                                            ///< left out where alpha already clears them
};

class DrawTarget {
public:
    virtual ~DrawTarget() = default;

    virtual Size GetSize() const = 0;

    /// Everything below up to EndFrame happens between these two, on one thread.
    virtual void BeginFrame() = 0;
    /// Ends all drawing and, with a presentation, shows the frame. A failure of any call since
    /// BeginFrame comes out here. An offscreen target has no screen and ignores the presentation.
    [[nodiscard]] virtual GraphicsResult EndFrame(const Presentation* presentation) = 0;

    /// Fills everything, alpha included, without blending.
    virtual void Clear(Color color) = 0;

    virtual void FillRectangle(const RectF& rect, Brush& brush) = 0;
    virtual void FillRoundedRectangle(const RectF& rect, float radius, Brush& brush) = 0;
    /// Strokes lie half inside and half outside the line.
    virtual void DrawRectangle(const RectF& rect, Brush& brush, float strokeWidth) = 0;
    virtual void DrawRoundedRectangle(const RectF& rect, float radius, Brush& brush,
                                      float strokeWidth) = 0;
    virtual void FillEllipse(PointF center, float radiusX, float radiusY, Brush& brush) = 0;
    virtual void DrawEllipse(PointF center, float radiusX, float radiusY, Brush& brush,
                             float strokeWidth) = 0;
    virtual void DrawLine(PointF from, PointF to, Brush& brush, float strokeWidth) = 0;
    /// The arc about center, turned clockwise by rotation degrees, with round ends.
    virtual void DrawArc(const Arc& arc, PointF center, float rotation, Brush& brush,
                         float strokeWidth) = 0;

    /// The whole bitmap stretched over rect with linear interpolation.
    virtual void DrawBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) = 0;
    /// Repeats the bitmap in its own size over rect, the first one at rect's top-left corner.
    virtual void TileBitmap(const Bitmap& bitmap, const RectF& rect, float opacity) = 0;
    /// Paints the brush over rect through the bitmap's alpha, the bitmap being stretched to it.
    virtual void FillOpacityMask(const Bitmap& bitmap, const RectF& rect, Brush& brush) = 0;

    /// The layout's box has its top-left corner at origin.
    virtual void DrawTextLayout(PointF origin, const TextLayout& layout, Brush& brush) = 0;

    /// Clips nest: what is drawn until PopClip shows only inside. Every push needs its pop within
    /// the frame. Where a rounded clip cannot be made the straight one takes its place.
    virtual void PushClip(const RectF& rect) = 0;
    virtual void PushRoundedClip(const RectF& rect, float radius) = 0;
    virtual void PopClip() = 0;

    virtual Created<Brush> CreateSolidBrush(Color color) = 0;
    virtual Created<GradientBrush> CreateGradientBrush(Color start, Color end) = 0;
    /// The pixels are copied. Size at least 1 by 1.
    virtual Created<Bitmap> CreateBitmap(Size size, BitmapAlpha alpha) = 0;
    virtual Created<Bitmap> CreateBitmap(const Image& image) = 0;
    /// Degrees clockwise from the right (3 o'clock); sweep above 0 and below 360.
    virtual Created<Arc> CreateArc(float radius, float startDegrees, float sweepDegrees) = 0;

    /// The pixels of the last ended frame; empty when the target cannot give them. Slow: for
    /// pictures and tests.
    virtual Image ReadFrame() = 0;
};

}  // namespace Platform
