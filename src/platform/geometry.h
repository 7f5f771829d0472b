#pragma once

/// The plain shapes that drawing and layout share.
namespace Platform {

/// Whole pixels.
struct Point {
    int x = 0;
    int y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    int width = 0;
    int height = 0;
    bool operator==(const Size&) const = default;
};

/// right and bottom are the first pixels outside.
struct Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    bool operator==(const Rect&) const = default;
};

/// Pixels with fractions: a pixel's centre is at .5.
struct PointF {
    float x = 0.0F;
    float y = 0.0F;
    bool operator==(const PointF&) const = default;
};

struct RectF {
    float left = 0.0F;
    float top = 0.0F;
    float right = 0.0F;
    float bottom = 0.0F;
    bool operator==(const RectF&) const = default;

    float Width() const { return right - left; }
    float Height() const { return bottom - top; }
};

constexpr RectF ToRectF(const Rect& rect) {
    return {static_cast<float>(rect.left), static_cast<float>(rect.top),
            static_cast<float>(rect.right), static_cast<float>(rect.bottom)};
}

/// Each component from 0.0 to 1.0, not premultiplied.
struct Color {
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    float alpha = 0.0F;
    bool operator==(const Color&) const = default;
};

}  // namespace Platform
