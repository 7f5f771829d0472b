// What the pixels are when the toolkit's shapes are drawn for real.

#include <array>
#include <cmath>

#include "directgl/frame_window.h"
#include "directgl/image.h"
#include "directgl/targets/target_fixture.h"

namespace DirectGL {
namespace {

using ShapesTest = TargetTest;
INSTANTIATE_TEST_SUITE_P(Targets, ShapesTest, AllTargets, NameOfKind);

TEST_P(ShapesTest, FillsAndBordersHaveSharpEdgesAndRoundCorners) {
    Make<Window>(10, 10, 30, 30)
        ->SetStyle({.fill = Red, .border = Green, .gradientEnd = {}, .borderWidth = 4.0F});
    auto* round = Make<Window>(60, 10, 40, 40);
    round->SetColor(Blue);
    round->SetCornerRadius(20);
    Shoot();
    EXPECT_TRUE(IsClear(7, 20)) << "the border lies over the edge";
    EXPECT_TRUE(Shows(8, 20, Green));
    EXPECT_TRUE(Shows(12, 20, Red));
    EXPECT_TRUE(Shows(37, 20, Red));
    EXPECT_TRUE(Shows(41, 20, Green));
    EXPECT_TRUE(IsClear(42, 20));
    EXPECT_TRUE(Shows(80, 11, Blue));
    for (const auto& [x, y] : {std::pair{61, 11}, {98, 11}, {61, 48}, {98, 48}})
        EXPECT_TRUE(IsClear(x, y));
    // A disc's share of its square is a quarter of pi.
    EXPECT_NEAR(CountPainted({60, 10, 100, 50}), 1257, 90);
}

TEST_P(ShapesTest, GradientsRunFromColourToColour) {
    const WindowStyle style{.fill = Red, .border = {}, .gradientEnd = Blue, .gradient = true};
    Make<Window>(0, 0, 20, 100)->SetStyle(style);
    WindowStyle across = style;
    across.horizontal = true;
    auto* faded = Make<Window>(50, 0, 100, 20);
    faded->SetStyle(across);
    faded->SetOpacity(0.5F);
    Shoot();
    EXPECT_TRUE(Shows(10, 0, Red));
    EXPECT_TRUE(Shows(10, 50, {0.495F, 0.0F, 0.505F, 1.0F}, 4));
    EXPECT_TRUE(Shows(10, 25, {0.745F, 0.0F, 0.255F, 1.0F}, 4));
    EXPECT_TRUE(Shows(10, 99, Blue));
    EXPECT_TRUE(Shows(50, 10, Faded(Red, 0.5F)));
    EXPECT_TRUE(Shows(149, 10, Faded(Blue, 0.5F)));
    EXPECT_TRUE(Shows(100, 10, {0.495F, 0.0F, 0.505F, 0.5F}, 4));
}

TEST_P(ShapesTest, OpacitiesMultiplyDownTheTree) {
    auto* parent = Make<Window>(0, 0, 100, 100);
    parent->SetColor(Red);
    parent->SetOpacity(0.5F);
    auto* child = Place(parent->Create<Window>(), 10, 10, 50, 50);
    // A colour's alpha counts twice: it is in the brush and in the brush's opacity.
    child->SetColor(Faded(Blue, 0.5F));
    Shoot();
    EXPECT_TRUE(Shows(80, 80, Faded(Red, 0.5F)));
    // An eighth of blue over half of red.
    const std::array over = At(30, 30);
    EXPECT_NEAR(over[0], 32, 3);
    EXPECT_NEAR(over[2], 112, 3);
    EXPECT_NEAR(over[3], 143, 3);
}

TEST_P(ShapesTest, FramesClipTheirChildren) {
    auto* outer = Make<FrameWindow>(10, 10, 80, 80);
    auto* inner = Place(outer->Create<FrameWindow>(), 20, 20, 100, 40);
    inner->SetCornerRadius(20);
    Place(inner->Create<Window>(), -50, -50, 300, 300)->SetColor(Green);
    Make<Window>(150, 50, 5, 5)->SetColor(Red);
    Shoot();
    EXPECT_TRUE(Shows(60, 50, Green));
    EXPECT_TRUE(Shows(60, 30, Green));
    EXPECT_TRUE(Shows(89, 50, Green, 8)) << "as far as the outer frame goes";
    EXPECT_TRUE(IsClear(90, 50));
    EXPECT_TRUE(IsClear(60, 29));
    EXPECT_TRUE(IsClear(31, 31)) << "the inner frame's corner";
    EXPECT_TRUE(Shows(152, 52, Red)) << "nothing is clipped afterwards";
    EXPECT_TRUE(IsClear(5, 5));
}

TEST_P(ShapesTest, ImagesAreStretchedOverTheirWidget) {
    auto* image = Make<Image>(20, 20, 0, 0);
    image->SetImageFromHandle(Encode(1, {Red}));
    EXPECT_EQ(image->GetSize(), (Size{1, 1})) << "the first image gives the widget its size";
    image->SetImageFromHandle(Encode(2, {Red, Green, Blue, White}));
    EXPECT_EQ(image->GetSize(), (Size{1, 1}));
    image->SetSize(80, 40);
    Shoot();
    EXPECT_TRUE(Shows(25, 22, Red, 8));
    EXPECT_TRUE(Shows(95, 22, Green, 8));
    EXPECT_TRUE(Shows(25, 57, Blue, 8));
    EXPECT_TRUE(Shows(95, 57, White, 8));
    EXPECT_TRUE(IsClear(19, 30));
    EXPECT_TRUE(IsClear(100, 30));
    image->SetOpacity(0.25F);
    Shoot();
    EXPECT_TRUE(Shows(25, 22, Faded(Red, 0.25F), 4));
    image->SetImageFromBuffer(nullptr, 5);
    image->SetImageFromHandle(Junk());
    Shoot();
    EXPECT_TRUE(IsClear(25, 22));
}

TEST_P(ShapesTest, TilesRepeatInTheirOwnSize) {
    auto* image = Make<Image>(10, 10, 0, 0);
    image->SetImageFromHandle(Encode(4, {Red, Red, Blue, Blue, Green, Green, {}, {}}));
    image->SetTile(3.0F, 1.5F);
    image->SetOpacity(0.5F);
    Shoot();
    for (const int x : {10, 14, 18}) {
        EXPECT_TRUE(Shows(x, 10, Faded(Red, 0.5F)));
        EXPECT_TRUE(Shows(x + 3, 10, Faded(Blue, 0.5F)));
        EXPECT_TRUE(Shows(x + 1, 11, Faded(Green, 0.5F)));
        EXPECT_TRUE(IsClear(x + 2, 11));
        EXPECT_TRUE(Shows(x, 12, Faded(Red, 0.5F))) << "half of the second row";
    }
    EXPECT_TRUE(IsClear(22, 10));
    EXPECT_TRUE(IsClear(10, 13));
}

TEST_P(ShapesTest, MasksTakeTheAlphaAndTheTintsColour) {
    auto* image = Make<Image>(10, 10, 0, 0);
    image->SetImageFromHandle(Encode(2, {White, Faded(Green, 0.5F), {}, Red}));
    image->SetSize(2, 2);
    image->SetTint(Blue);
    image->SetOpacity(0.5F);
    Shoot();
    EXPECT_TRUE(Shows(10, 10, Faded(Blue, 0.5F)));
    EXPECT_TRUE(Shows(11, 10, Faded(Blue, 0.25F)));
    EXPECT_TRUE(IsClear(10, 11));
    EXPECT_TRUE(Shows(11, 11, Faded(Blue, 0.5F)));
    EXPECT_TRUE(IsClear(12, 11)) << "the mask ends with its rectangle";
}

TEST_P(ShapesTest, ArcsHaveTheirSweepTheirTurnAndRoundEnds) {
    Platform::DrawTarget& target = *gui.GetTarget();
    const std::unique_ptr<Platform::Arc> quarter = target.CreateArc(20.0F, -90.0F, 90.0F).object;
    ASSERT_TRUE(quarter);
    for (const float turn : {0.0F, 90.0F, 200.0F}) {
        target.BeginFrame();
        target.Clear({});
        target.DrawArc(*quarter, {100.0F, 50.0F}, turn, *gui.GetSolidColorBrush(Red), 8.0F);
        ASSERT_EQ(target.EndFrame(nullptr), Platform::GraphicsOk);
        shot = target.ReadFrame();
        const auto shows = [&](float degrees, float radius, const ColorRGBA& color) {
            const float angle = (degrees + turn) * 3.14159265F / 180.0F;
            return Shows(static_cast<int>(std::floor(100.0F + radius * std::cos(angle))),
                         static_cast<int>(std::floor(50.0F + radius * std::sin(angle))), color);
        };
        EXPECT_TRUE(shows(-80.0F, 20.0F, Red));
        EXPECT_TRUE(shows(-45.0F, 22.0F, Red));
        EXPECT_TRUE(shows(-10.0F, 18.0F, Red));
        EXPECT_TRUE(shows(-96.0F, 20.0F, Red)) << "within the round start";
        EXPECT_TRUE(shows(6.0F, 20.0F, Red)) << "within the round end";
        EXPECT_TRUE(shows(-108.0F, 20.0F, {}));
        EXPECT_TRUE(shows(18.0F, 20.0F, {}));
        EXPECT_TRUE(shows(-45.0F, 14.0F, {}));
        EXPECT_TRUE(shows(-45.0F, 26.0F, {}));
        EXPECT_TRUE(shows(135.0F, 20.0F, {}));
    }
}

}  // namespace
}  // namespace DirectGL
