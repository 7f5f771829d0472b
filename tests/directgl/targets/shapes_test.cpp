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

TEST_P(ShapesTest, FillsHaveSharpEdgesAndRoundCorners) {
    Make<Window>(10, 10, 40, 30)->SetColor(Red);
    auto* round = Make<Window>(60, 10, 40, 40);
    round->SetColor(Blue);
    round->SetCornerRadius(20);
    Shoot();
    EXPECT_TRUE(Shows(10, 10, Red));
    EXPECT_TRUE(Shows(49, 39, Red));
    for (const auto& [x, y] : {std::pair{9, 20}, {50, 20}, {20, 9}, {20, 40}})
        EXPECT_TRUE(IsClear(x, y));
    EXPECT_TRUE(Shows(80, 30, Blue));
    EXPECT_TRUE(Shows(80, 11, Blue));
    for (const auto& [x, y] : {std::pair{61, 11}, {98, 11}, {61, 48}, {98, 48}})
        EXPECT_TRUE(IsClear(x, y));
    // A disc's share of its square is a quarter of pi.
    EXPECT_NEAR(CountPainted({60, 10, 100, 50}), 1257, 90);
}

TEST_P(ShapesTest, BordersLieOverTheEdge) {
    Make<Window>(20, 20, 60, 40)
        ->SetStyle({.fill = Red, .border = Blue, .gradientEnd = {}, .borderWidth = 4.0F});
    Shoot();
    EXPECT_TRUE(IsClear(17, 40));
    EXPECT_TRUE(Shows(18, 40, Blue));
    EXPECT_TRUE(Shows(21, 40, Blue));
    EXPECT_TRUE(Shows(22, 40, Red));
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
    auto* image = Make<Image>(20, 20, 80, 40);
    image->SetImageFromHandle(Encode(2, {Red, Green, Blue, White}));
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

/// An arc of a quarter turn from the top, in the middle of its widget.
class ArcWidget : public Window {
public:
    explicit ArcWidget(Gui* itsGui) : Window(itsGui) {}
    void Draw() override {
        Platform::DrawTarget* target = gui->GetTarget();
        if (!target) return;
        if (!arc_) arc_ = target->CreateArc(20.0F, -90.0F, 90.0F).object;
        if (Platform::Brush* brush = gui->GetSolidColorBrush(Red); brush && arc_) {
            brush->SetOpacity(1.0F);
            target->DrawArc(*arc_, {100.0F, 50.0F}, turn, *brush, 8.0F);
        }
    }
    void ReleaseDeviceObjects() override {
        arc_.reset();
        Window::ReleaseDeviceObjects();
    }
    float turn = 0.0F;

private:
    std::unique_ptr<Platform::Arc> arc_;
};

TEST_P(ShapesTest, ArcsHaveTheirSweepTheirTurnAndRoundEnds) {
    auto* widget = Make<ArcWidget>(0, 0, Width, Height);
    for (const float turn : {0.0F, 90.0F, 200.0F}) {
        widget->turn = turn;
        Shoot();
        const auto at = [&](float degrees, float radius) {
            const float angle = (degrees + turn) * 3.14159265F / 180.0F;
            return Point{static_cast<int>(std::floor(100.0F + radius * std::cos(angle))),
                         static_cast<int>(std::floor(50.0F + radius * std::sin(angle)))};
        };
        const auto shows = [&](float degrees, float radius, const ColorRGBA& color) {
            const Point place = at(degrees, radius);
            return Shows(place.x, place.y, color);
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
