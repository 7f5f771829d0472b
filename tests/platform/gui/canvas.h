#pragma once

#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>

#include "platform/desktop.h"

/// Drawing that is looked at pixel by pixel.
namespace TestSupport {

inline constexpr Platform::Color White{1.0F, 1.0F, 1.0F, 1.0F};
inline constexpr Platform::Color Red{1.0F, 0.0F, 0.0F, 1.0F};
inline constexpr Platform::Color Clear{};

/// This adapter's graphics with the private families Inter and Sora, each Regular and Bold; one
/// for the whole program.
Platform::Graphics& SharedGraphics();

/// Colours multiplied by the alpha, as in an Image.
struct Pixel {
    int red = 0;
    int green = 0;
    int blue = 0;
    int alpha = 0;

    /// Whether no part differs by more than the tolerance.
    bool IsNear(const Pixel& other, int tolerance = 3) const;
};
std::ostream& operator<<(std::ostream& out, const Pixel& pixel);

Pixel PixelOf(Platform::Color color);
Pixel PixelAt(const Platform::Image& image, int x, int y);
/// The sum of all alphas: what is covered, in whole pixels.
double CoveredArea(const Platform::Image& image);
/// The smallest rectangle around everything that is not quite clear.
Platform::Rect InkOf(const Platform::Image& image);

inline testing::AssertionResult Near(const Pixel& actual, const Pixel& expected,
                                     int tolerance = 3) {
    if (actual.IsNear(expected, tolerance)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << actual << " instead of " << expected;
}

/// An offscreen target that every frame of a test is drawn on.
class Canvas {
public:
    explicit Canvas(int width = 64, int height = 64);

    Platform::DrawTarget& Target() { return *target_; }
    std::unique_ptr<Platform::Brush> Solid(Platform::Color color);
    /// A frame on clear ground.
    Platform::Image Draw(const std::function<void(Platform::DrawTarget&)>& draw);

private:
    std::unique_ptr<Platform::DrawTarget> target_;
};

/// width * height pixels of the colours that a function tells.
Platform::Image MakeImage(int width, int height,
                          const std::function<Platform::Color(int x, int y)>& colorAt);

}  // namespace TestSupport
