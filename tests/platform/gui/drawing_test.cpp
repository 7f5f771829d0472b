#include "platform/drawing.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

#include "platform/gui/canvas.h"

using namespace Platform;
using namespace TestSupport;

namespace {

constexpr double Pi = std::numbers::pi;

}  // namespace

/// The covered area tells the shape, its size and that its edges are soft.
TEST(Drawing, ShapesCoverWhatGeometrySays) {
    Canvas canvas;
    const auto brush = canvas.Solid(White);
    const auto arc = canvas.Target().CreateArc(20.0F, 0.0F, 180.0F);
    ASSERT_TRUE(arc);
    Brush& white = *brush;
    const RectF rect{10.25F, 12.5F, 50.5F, 40.75F};
    const double width = 40.25;
    const double height = 28.25;
    struct Case {
        const char* name;
        std::function<void(DrawTarget&)> draw;
        double area;
    };
    const Case cases[]{
        {"rectangle", [&](auto& target) { target.FillRectangle(rect, white); }, width * height},
        {"rounded", [&](auto& target) { target.FillRoundedRectangle(rect, 8.0F, white); },
         width * height - (4.0 - Pi) * 64.0},
        {"capsule", [&](auto& target) { target.FillRoundedRectangle(rect, 14.125F, white); },
         (width - height) * height + Pi * height * height / 4.0},
        {"frame", [&](auto& target) { target.DrawRectangle(rect, white, 3.0F); },
         2.0 * (width + height) * 3.0},
        {"rounded frame",
         [&](auto& target) { target.DrawRoundedRectangle(rect, 8.0F, white, 3.0F); },
         (2.0 * (width + height) - 64.0 + 16.0 * Pi) * 3.0},
        {"circle",
         [&](auto& target) {
             target.FillEllipse({32.5F, 31.25F}, 20.0F, 20.0F, white);
         },
         Pi * 400.0},
        {"ellipse",
         [&](auto& target) {
             target.FillEllipse({32.0F, 32.0F}, 25.0F, 12.0F, white);
         },
         Pi * 300.0},
        {"ring",
         [&](auto& target) {
             target.DrawEllipse({32.0F, 32.0F}, 20.0F, 20.0F, white, 4.0F);
         },
         Pi * 160.0},
        {"line",
         [&](auto& target) {
             target.DrawLine({10.0F, 10.0F}, {40.0F, 50.0F}, white, 3.0F);
         },
         150.0},
        {"arc",
         [&](auto& target) {
             target.DrawArc(*arc.object, {32.0F, 32.0F}, 0.0F, white, 4.0F);
         },
         Pi * 80.0 + Pi * 4.0},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        const double area = CoveredArea(canvas.Draw(each.draw));
        EXPECT_NEAR(area, each.area, each.area * 0.01 + 1.0);
    }
}

TEST(Drawing, BitmapsTakeNewPixels) {
    Canvas canvas;
    const auto bitmap = canvas.Target().CreateBitmap({3, 2}, BitmapAlpha::Ignore);
    ASSERT_TRUE(bitmap);
    // Rows of four pixels, of which the last does not count; alpha does not count either.
    const Image wide = MakeImage(4, 2, [](int x, int y) {
        return Color{x == 3 ? 1.0F : 0.0F, y == 0 ? 1.0F : 0.0F, 1.0F, 1.0F};
    });
    std::vector<std::byte> pixels = wide.pixels;
    for (std::size_t at = 3; at < pixels.size(); at += 4)
        pixels[at] = std::byte{0};
    ASSERT_EQ(bitmap.object->Write(pixels, wide.Stride()), GraphicsOk);
    EXPECT_NE(bitmap.object->Write(std::span(pixels).first(24), wide.Stride()), GraphicsOk);
    EXPECT_NE(bitmap.object->Write(pixels, 8), GraphicsOk);
    const Image image = canvas.Draw([&](DrawTarget& target) {
        target.DrawBitmap(*bitmap.object, {0.0F, 0.0F, 3.0F, 2.0F}, 1.0F);
    });
    for (int x = 0; x < 3; ++x) {
        EXPECT_TRUE(Near(PixelAt(image, x, 0), {0, 255, 255, 255}));
        EXPECT_TRUE(Near(PixelAt(image, x, 1), {0, 0, 255, 255}));
    }
    EXPECT_EQ(PixelAt(image, 3, 0).alpha, 0);
}
