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

TEST(Drawing, ClearReplacesAlphaAndFillsBlend) {
    Canvas canvas;
    const auto half = canvas.Solid({1.0F, 0.0F, 0.0F, 0.5F});
    const Image image = canvas.Draw([&](DrawTarget& target) {
        target.Clear(Blue);
        target.Clear({0.0F, 1.0F, 0.0F, 0.5F});
        target.FillRectangle({0.0F, 0.0F, 32.0F, 64.0F}, *half);
        half->SetOpacity(0.5F);
        target.FillRectangle({0.0F, 0.0F, 16.0F, 64.0F}, *half);
    });
    EXPECT_TRUE(Near(PixelAt(image, 50, 30), {0, 128, 0, 128}));
    EXPECT_TRUE(Near(PixelAt(image, 24, 30), {128, 64, 0, 191}));
    EXPECT_TRUE(Near(PixelAt(image, 8, 30), {159, 48, 0, 207}));
}

TEST(Drawing, StrokesLieOnBothSidesOfTheLine) {
    Canvas canvas;
    const auto white = canvas.Solid(White);
    const Image image = canvas.Draw([&](DrawTarget& target) {
        target.DrawRectangle({10.0F, 10.0F, 50.0F, 50.0F}, *white, 4.0F);
        target.DrawLine({0.0F, 60.0F}, {20.0F, 60.0F}, *white, 1.0F);
    });
    EXPECT_EQ(InkOf(image), (Rect{0, 8, 52, 61}));
    EXPECT_EQ(PixelAt(image, 11, 30).alpha, 255);
    EXPECT_EQ(PixelAt(image, 12, 30).alpha, 0);
    // Corners are sharp, the ends of a line are straight.
    EXPECT_EQ(PixelAt(image, 8, 8).alpha, 255);
    EXPECT_EQ(PixelAt(image, 20, 60).alpha, 0);
    for (const int y : {59, 60})
        EXPECT_NEAR(PixelAt(image, 10, y).alpha, 128, 3);
}

TEST(Drawing, ArcsGoClockwiseFromTheRightAndTurn) {
    Canvas canvas;
    const auto white = canvas.Solid(White);
    const auto quarter = canvas.Target().CreateArc(20.0F, 0.0F, 90.0F);
    ASSERT_TRUE(quarter);
    const auto covers = [](const Image& image, double degrees) {
        const double angle = degrees * Pi / 180.0;
        return PixelAt(image, static_cast<int>(32.0 + 20.0 * std::cos(angle)),
                       static_cast<int>(32.0 + 20.0 * std::sin(angle)))
                   .alpha > 200;
    };
    for (const float rotation : {0.0F, 90.0F, 200.0F, -45.0F}) {
        SCOPED_TRACE(rotation);
        const Image image = canvas.Draw([&](DrawTarget& target) {
            target.DrawArc(*quarter.object, {32.0F, 32.0F}, rotation, *white, 6.0F);
        });
        for (const double inside : {1.0, 30.0, 60.0, 89.0})
            EXPECT_TRUE(covers(image, rotation + inside)) << inside;
        for (const double outside : {110.0, 180.0, 270.0, 340.0})
            EXPECT_FALSE(covers(image, rotation + outside)) << outside;
        // The round end reaches half the stroke beyond it.
        EXPECT_TRUE(covers(image, rotation - 6.0));
        EXPECT_FALSE(covers(image, rotation - 12.0));
    }
}

TEST(Drawing, GradientsRunBetweenTheirPoints) {
    Canvas canvas;
    const auto brush = canvas.Gradient(Red, Blue, {16.0F, 0.0F}, {48.0F, 0.0F});
    const auto drawAll = [&](DrawTarget& target) {
        target.FillRectangle({0.0F, 0.0F, 64.0F, 64.0F}, *brush);
    };
    Image image = canvas.Draw(drawAll);
    EXPECT_TRUE(Near(PixelAt(image, 4, 20), PixelOf(Red)));
    EXPECT_TRUE(Near(PixelAt(image, 60, 20), PixelOf(Blue)));
    for (const int y : {0, 63})
        EXPECT_TRUE(Near(PixelAt(image, 31, y), {129, 0, 126, 255}, 5));
    brush->SetPoints({0.0F, 0.0F}, {0.0F, 64.0F});
    brush->SetOpacity(0.5F);
    image = canvas.Draw(drawAll);
    EXPECT_TRUE(Near(PixelAt(image, 9, 1), {125, 0, 3, 128}, 4));
    EXPECT_TRUE(Near(PixelAt(image, 50, 62), {3, 0, 125, 128}, 4));
    // A rounded shape takes the same colours.
    brush->SetOpacity(1.0F);
    image = canvas.Draw([&](DrawTarget& target) {
        target.FillRoundedRectangle({0.0F, 0.0F, 64.0F, 64.0F}, 16.0F, *brush);
    });
    EXPECT_EQ(PixelAt(image, 0, 0).alpha, 0);
    EXPECT_TRUE(Near(PixelAt(image, 32, 31), {129, 0, 126, 255}, 5));
}

TEST(Drawing, ClipsNestAndEnd) {
    Canvas canvas;
    const auto white = canvas.Solid(White);
    const auto red = canvas.Solid(Red);
    const RectF all{0.0F, 0.0F, 64.0F, 64.0F};
    const Image image = canvas.Draw([&](DrawTarget& target) {
        target.PushRoundedClip({0.0F, 0.0F, 40.0F, 40.0F}, 12.0F);
        target.PushClip({20.0F, 0.0F, 64.0F, 20.0F});
        target.FillRectangle(all, *white);
        target.PopClip();
        target.PushRoundedClip({0.0F, 20.0F, 20.0F, 40.0F}, 10.0F);
        target.FillRectangle(all, *red);
        target.PopClip();
        target.PopClip();
        target.PushClip({50.0F, 50.0F, 50.0F, 64.0F});
        target.FillRectangle(all, *white);
        target.PopClip();
        target.FillRectangle({60.0F, 60.0F, 64.0F, 64.0F}, *red);
    });
    EXPECT_TRUE(Near(PixelAt(image, 22, 2), PixelOf(White)));
    EXPECT_TRUE(Near(PixelAt(image, 39, 0), PixelOf(Clear))) << "the outer clip's round corner";
    EXPECT_TRUE(Near(PixelAt(image, 10, 10), PixelOf(Clear)));
    EXPECT_TRUE(Near(PixelAt(image, 10, 30), PixelOf(Red)));
    EXPECT_TRUE(Near(PixelAt(image, 18, 22), PixelOf(Clear))) << "the inner clip's round corner";
    EXPECT_TRUE(Near(PixelAt(image, 51, 55), PixelOf(Clear))) << "an empty clip";
    EXPECT_TRUE(Near(PixelAt(image, 62, 62), PixelOf(Red)));
    // A rounded clip is as soft as a rounded shape.
    const Image clipped = canvas.Draw([&](DrawTarget& target) {
        target.PushRoundedClip({4.0F, 4.0F, 60.0F, 60.0F}, 20.0F);
        target.FillRectangle(all, *white);
        target.PopClip();
    });
    EXPECT_NEAR(CoveredArea(clipped), 56.0 * 56.0 - (4.0 - Pi) * 400.0, 30.0);
}

TEST(Drawing, BitmapsAreStretchedFadedAndRepeated) {
    Canvas canvas;
    // Left column red, right column blue and half clear.
    const auto bitmap = canvas.MakeBitmap(MakeImage(2, 2, [](int x, int) {
        return x == 0 ? Red : Color{0.0F, 0.0F, 1.0F, 0.5F};
    }));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->GetSize(), (Size{2, 2}));
    Image image = canvas.Draw([&](DrawTarget& target) {
        target.DrawBitmap(*bitmap, {0.0F, 0.0F, 40.0F, 20.0F}, 1.0F);
        target.DrawBitmap(*bitmap, {0.0F, 20.0F, 40.0F, 40.0F}, 0.5F);
    });
    EXPECT_TRUE(Near(PixelAt(image, 3, 10), PixelOf(Red)));
    EXPECT_TRUE(Near(PixelAt(image, 36, 10), {0, 0, 128, 128}));
    EXPECT_TRUE(Near(PixelAt(image, 20, 10), {124, 0, 66, 190}, 8)) << "linear in between";
    EXPECT_TRUE(Near(PixelAt(image, 3, 30), {128, 0, 0, 128}));
    EXPECT_EQ(InkOf(image), (Rect{0, 0, 40, 40}));
    image = canvas.Draw([&](DrawTarget& target) {
        target.TileBitmap(*bitmap, {11.0F, 5.0F, 18.0F, 9.0F}, 0.5F);
    });
    EXPECT_EQ(InkOf(image), (Rect{11, 5, 18, 9}));
    for (const int x : {11, 13, 17})
        EXPECT_TRUE(Near(PixelAt(image, x, 7), {128, 0, 0, 128}));
    EXPECT_TRUE(Near(PixelAt(image, 12, 7), {0, 0, 64, 64}));
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

TEST(Drawing, MasksLetTheBrushThrough) {
    Canvas canvas;
    // Clear, half and whole; its own colour does not count.
    const auto mask = canvas.MakeBitmap(MakeImage(3, 1, [](int x, int) {
        return Color{0.0F, 1.0F, 0.0F, static_cast<float>(x) / 2.0F};
    }));
    const auto red = canvas.Solid({1.0F, 0.0F, 0.0F, 0.8F});
    red->SetOpacity(0.5F);
    Image image = canvas.Draw([&](DrawTarget& target) {
        target.FillOpacityMask(*mask, {8.0F, 4.0F, 11.0F, 5.0F}, *red);
    });
    EXPECT_TRUE(Near(PixelAt(image, 8, 4), PixelOf(Clear)));
    EXPECT_TRUE(Near(PixelAt(image, 9, 4), {51, 0, 0, 51}));
    EXPECT_TRUE(Near(PixelAt(image, 10, 4), {102, 0, 0, 102}));
    EXPECT_EQ(PixelAt(image, 11, 4).alpha, 0) << "nothing beyond the rectangle";
    const auto gradient = canvas.Gradient(Red, Blue, {0.0F, 0.0F}, {0.0F, 64.0F});
    image = canvas.Draw([&](DrawTarget& target) {
        target.FillOpacityMask(*mask, {0.0F, 0.0F, 60.0F, 64.0F}, *gradient);
    });
    EXPECT_TRUE(Near(PixelAt(image, 58, 32), {126, 0, 129, 255}, 6));
    EXPECT_TRUE(Near(PixelAt(image, 30, 2), {122, 0, 5, 128}, 6)) << "a stretched mask is smooth";
    EXPECT_TRUE(Near(PixelAt(image, 2, 32), PixelOf(Clear)));
}

TEST(Drawing, TargetsOfAllSizesCanBeMadeAgain) {
    for (const Size size : {Size{1, 1}, Size{360, 540}, Size{1, 700}}) {
        Canvas canvas(size.width, size.height);
        const auto green = canvas.Solid(Green);
        const Image image = canvas.Draw([&](DrawTarget& target) {
            target.FillRectangle({-5.0F, -5.0F, 1000.0F, 1000.0F}, *green);
            target.FillRoundedRectangle({-50.0F, -50.0F, 1.0e6F, 1.0e6F}, 5.0F, *green);
        });
        EXPECT_TRUE(Near(PixelAt(image, size.width - 1, size.height - 1), PixelOf(Green)));
    }
}
