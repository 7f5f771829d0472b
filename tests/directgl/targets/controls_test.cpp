// The controls in their states, by the pixels that a user sees after the events of a user.

#include "directgl/button.h"
#include "directgl/framed_text.h"
#include "directgl/image.h"
#include "directgl/input.h"
#include "directgl/modal.h"
#include "directgl/targets/target_fixture.h"
#include "directgl/toggle.h"

namespace DirectGL {
namespace {

using ControlsTest = TargetTest;
INSTANTIATE_TEST_SUITE_P(Targets, ControlsTest, AllTargets, NameOfKind);

TEST_P(ControlsTest, AButtonShowsItsStatesInImagesOrColours) {
    auto* button = Make<Button>(10, 10, 40, 20);
    button->SetImages(Encode(1, {Red}), Encode(1, {Green}), nullptr, nullptr);
    auto* pill = Make<Button>(100, 10, 40, 20);
    pill->SetColors(Red, Green, Blue);
    pill->SetPill(true);
    pill->SetOutline(true, 4, White);
    Shoot();
    EXPECT_TRUE(Shows(30, 20, Red));
    EXPECT_TRUE(IsClear(100, 10)) << "round ends";
    EXPECT_TRUE(Shows(101, 20, White));
    EXPECT_TRUE(Shows(120, 20, Red));
    Native().PointerMove(30, 20);
    Pump();
    Shoot();
    EXPECT_TRUE(Shows(30, 20, Green));
    Native().LeftDown(120, 20);
    Pump();
    button->SetEnabled(false);
    Shoot();
    EXPECT_TRUE(Shows(30, 20, Faded(Red, 0.4F))) << "the first image stands for a missing one";
    EXPECT_TRUE(Shows(120, 20, Blue));
    button->SetImages(Junk(), nullptr, nullptr, nullptr);
    button->SetColors(Blue, Blue, Blue);
    Shoot();
    EXPECT_TRUE(Shows(30, 20, Faded(Blue, 0.4F))) << "and the face for an image that is none";
}

TEST_P(ControlsTest, ATogglesKnobGoesFromSideToSide) {
    auto* toggle = Make<Toggle>(10, 10, 60, 30);
    toggle->SetColors(Red, Green, White);
    Shoot();
    EXPECT_TRUE(Shows(25, 25, White));
    EXPECT_TRUE(Shows(55, 25, Red));
    Native().Click(40, 25);
    Pump();
    Tick(30);
    Shoot();
    EXPECT_TRUE(Shows(55, 25, White));
    EXPECT_TRUE(Shows(25, 25, Green));
    EXPECT_TRUE(IsClear(11, 11));
}

TEST_P(ControlsTest, AModalDimsWhatLiesBehind) {
    Make<Window>(0, 0, Width, Height)->SetColor(White);
    auto* modal = Make<Modal>(0, 0, Width, Height);
    modal->SetDimColor({0.0F, 0.0F, 0.0F, 0.75F});
    Shoot();
    // The alpha goes in twice: with the brush's colour and with its opacity.
    const float left = 1.0F - 0.75F * 0.75F;
    EXPECT_TRUE(Shows(100, 50, {left, left, left, 1.0F}));
    modal->SetBackdrop(Encode(1, {Blue}));
    Shoot();
    EXPECT_TRUE(Shows(100, 50, Blue));
}

TEST_P(ControlsTest, TextIsDrawnWhereItsAlignmentSays) {
    auto* text = Make<Text>(0, 0, 200, 100);
    text->SetFont(L"Inter");
    text->SetFontSize(20);
    text->SetText(L"HH");
    struct Case {
        HorizontalAlignment across;
        VerticalAlignment down;
        Rect place;
    };
    for (const Case& test :
         {Case{HorizontalAlignment::Left, VerticalAlignment::Top, {0, 0, 60, 40}},
          Case{HorizontalAlignment::Center, VerticalAlignment::Center, {70, 30, 130, 70}},
          Case{HorizontalAlignment::Right, VerticalAlignment::Bottom, {140, 60, 200, 100}}}) {
        text->SetHorizontalAlignment(test.across);
        text->SetVerticalAlignment(test.down);
        Shoot();
        const int all = CountPainted({0, 0, Width, Height});
        EXPECT_GT(all, 40);
        EXPECT_EQ(CountPainted(test.place), all);
    }
    text->SetTextColor(Faded(Red, 0.5F));
    Shoot();
    for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x)
            ASSERT_LE(At(x, y)[0], At(x, y)[3] / 64) << "only red at " << x << "," << y;
}

TEST_P(ControlsTest, ALongTextIsCutAndScrollsUnderThePointer) {
    auto* framed = Make<FramedText>(20, 20, 80, 30);
    framed->GetLabel()->SetFont(L"Inter");
    framed->SetFullText(L"A text that is much longer than its box");
    EXPECT_EQ(framed->GetShownText().back(), L'\u2026');
    EXPECT_LE(framed->GetLabel()->GetMeasuredWidth(), 80);
    const Platform::Image still = Shoot();
    EXPECT_GT(CountPainted({20, 20, 100, 50}), 30);
    EXPECT_EQ(CountPainted({100, 0, 200, 100}), 0);
    Native().PointerMove(50, 35);
    Pump();
    Tick(600);
    Shoot();
    EXPECT_NE(shot.pixels, still.pixels);
    EXPECT_EQ(CountPainted({100, 0, 200, 100}), 0) << "the box clips";
    EXPECT_GT(CountPainted({60, 20, 100, 50}), 10) << "the text's end stands at the box's";
    Native().PointerLeave();
    Pump();
    Tick(600);
    EXPECT_EQ(Shoot().pixels, still.pixels);
}

TEST_P(ControlsTest, AFieldShowsItsCaretAndItsSelection) {
    auto* input = Make<Input>(10, 10, 100, 30);
    input->SetFont(L"Inter");
    input->SetFontSize(16);
    input->SetTextColor(Red);
    input->SetSelectionColor(Blue);
    Native().Click(15, 25);
    Native().Type(L"words");
    Pump();
    Tick();
    Shoot();
    const int end = 10 + input->GetMeasuredWidth();
    EXPECT_GT(CountPainted({end - 1, 12, end + 1, 38}), 20) << "the caret";
    EXPECT_EQ(CountPainted({end + 2, 0, 200, 100}), 0);
    Native().Press('A', Platform::ModifierControl);
    Pump();
    Shoot();
    EXPECT_TRUE(Shows(11, 11, Blue));
    EXPECT_TRUE(IsClear(end + 3, 25));
    Native().Press(Platform::KeyEnd);
    Native().Type(L" that do not fit into the field any more");
    Pump();
    Tick();
    Shoot();
    EXPECT_EQ(CountPainted({110, 0, 200, 100}), 0) << "the field clips";
    EXPECT_GT(CountPainted({80, 12, 110, 38}), 20) << "the caret is kept in view";
    EXPECT_GT(input->GetScrollOffset(), 100);
}

}  // namespace
}  // namespace DirectGL
