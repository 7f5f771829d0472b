#include "directgl/button.h"
#include "directgl/image.h"
#include "directgl/modal.h"
#include "directgl/scrollbar.h"
#include "directgl/toggle.h"
#include "gui_fixture.h"

namespace DirectGL {
namespace {

class WidgetsTest : public GuiTest {
protected:
    ImageHandle MakeImage(int width, int height) {
        Platform::Image image{{width, height}, {}};
        image.pixels.resize(image.Stride() * static_cast<std::size_t>(height), std::byte{255});
        return Utilities::MakeResourceHandle(graphics.codec.EncodePng(image));
    }

    Button* MakeButton() {
        auto* button = Place(layer->Create<Button>(), 0, 0, 40, 20);
        button->SetColors(Red, Green, Blue);
        button->SetClicked(Note("clicked"));
        return button;
    }
};

TEST_F(WidgetsTest, AButtonClicksNeitherAfterALostCaptureNorWhenItIsDisabled) {
    Button* button = MakeButton();
    Native().LeftDown(5, 5);
    Native().StealCapture();
    Native().LeftUp(5, 5);
    Pump();
    EXPECT_EQ(button->GetState(), Button::State::Hover);
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Hand);
    button->SetEnabled(false);
    Native().Click(5, 5);
    Pump();
    EXPECT_EQ(TakeNotes(), Notes{});
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Arrow);
}

TEST_F(WidgetsTest, AButtonThatChangesUnderThePointerShowsIt) {
    Button* button = MakeButton();
    Native().PointerMove(5, 5);
    Native().LeftDown(5, 5);
    Pump();
    button->SetEnabled(false);
    EXPECT_EQ(button->GetState(), Button::State::Normal);
    Native().LeftUp(5, 5);
    Pump();
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Arrow);
    button->SetEnabled(true);
    Native().LeftDown(150, 90);
    Native().LeftUp(5, 5);
    Pump();
    EXPECT_EQ(TakeNotes(), Notes{}) << "the press was over when it was disabled";
    EXPECT_EQ(button->GetState(), Button::State::Hover);
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Hand);
    gui.ClearHover();
    EXPECT_EQ(button->GetState(), Button::State::Normal);
    Native().PointerMove(6, 6);
    Pump();
    EXPECT_EQ(button->GetState(), Button::State::Hover) << "found again at the next move";
}

TEST_F(WidgetsTest, AButtonsLabelLetsThePressThrough) {
    Button* button = MakeButton();
    button->SetTextColor(Green);
    auto* label = button->Create<Text>();
    label->SetText(L"Press", true);
    button->SetLabel(label);
    auto* hover = Place(button->Create<Window>(), 0, 0, 40, 20);
    button->SetHoverChild(hover);
    button->Create<Window>();
    EXPECT_FALSE(hover->IsVisible());
    Native().Click(5, 5);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"clicked"}));
    EXPECT_TRUE(hover->IsVisible());
    button->SetMouseLeave(Note("leave"));
    MakeBox(50, 0, 20, 20)->SetMouseEnter(Note("enter"));
    Native().PointerMove(60, 5);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"leave", "enter"})) << "though the leave hides the child";
    Native().PointerMove(5, 5);
    Pump();
    EXPECT_EQ(label->GetTextStyle().textColor, Green);
    button->HideChildren();
    EXPECT_TRUE(label->IsVisible());
    button->DeleteChildren();
    EXPECT_EQ(button->GetChildren().size(), 2U);
    gui.ClearHover();
    EXPECT_FALSE(hover->IsVisible());
    button->DeleteChild(label);
    EXPECT_EQ(button->GetLabel(), nullptr);
}

TEST_F(WidgetsTest, AButtonsImagesFallBackOnTheFirst) {
    Button* button = MakeButton();
    button->SetImages(MakeImage(4, 4), nullptr, MakeImage(4, 4), nullptr);
    button->SetEnabled(false);
    EXPECT_EQ(Drawn("DrawBitmap"), "0,0,40,20 *0.4");
    button->SetEnabled(true);
    button->SetImages(Utilities::MakeResourceHandle({}), nullptr, nullptr, nullptr);
    EXPECT_EQ(Drawn("DrawBitmap"), "");
    EXPECT_NE(Drawn("FillRectangle"), "");
}

TEST_F(WidgetsTest, TheFirstImageGivesAWidgetItsSize) {
    auto* image = layer->Create<Image>();
    const ImageHandle first = MakeImage(12, 8);
    image->SetImageFromBuffer(first->bytes.data(), first->bytes.size());
    EXPECT_EQ(image->GetSize(), (Size{12, 8}));
    const ImageHandle second = MakeImage(30, 30);
    image->SetImageFromHandle(second);
    EXPECT_EQ(image->GetSize(), (Size{12, 8}));
    EXPECT_EQ(image->GetNaturalWidth(), 30.0F);
    EXPECT_EQ(Drawn("DrawBitmap"), "0,0,12,8 *1");
    const std::vector<std::byte> junk(100, std::byte{7});
    image->SetImageFromBuffer(junk.data(), junk.size());
    EXPECT_EQ(Drawn("DrawBitmap"), "");
    image->SetImageFromBuffer(nullptr, 5);
}

TEST_F(WidgetsTest, AToggleSlidesFromWhereItIs) {
    auto* toggle = Place(layer->Create<Toggle>(), 0, 0, 40, 20);
    toggle->SetChanged(Note("changed"));
    Native().Click(5, 5);
    Pump();
    EXPECT_TRUE(toggle->IsOn());
    EXPECT_EQ(TakeNotes(), (Notes{"changed"}));
    toggle->Update(gui.Now() - 0.05);
    EXPECT_EQ(toggle->GetKnob(), 0.0F) << "an update that began before the click";
    clock.Advance(0.11);
    gui.UpdatePass();
    EXPECT_NEAR(toggle->GetKnob(), 0.75F, 1e-3);
    Native().Click(5, 5);
    Pump();
    clock.Advance(0.11);
    gui.UpdatePass();
    EXPECT_NEAR(toggle->GetKnob(), 0.75F * 0.25F, 1e-3);
    clock.Advance(1.0);
    gui.UpdatePass();
    EXPECT_EQ(toggle->GetKnob(), 0.0F);
    TakeNotes();
    toggle->SetOn(true, false);
    EXPECT_EQ(toggle->GetKnob(), 1.0F);
    EXPECT_EQ(TakeNotes(), Notes{});
    Native().LeftDown(5, 5);
    Native().LeftUp(150, 90);
    Pump();
    EXPECT_TRUE(toggle->IsOn()) << "a release outside does not flip it";
}

TEST_F(WidgetsTest, AModalTellsOfClicksBesideItsPanelWhileItMayClose) {
    auto* modal = Place(layer->Create<Modal>(), 0, 0, Width, Height);
    auto* panel = Place(modal->Create<Window>(), 100, 50, 50, 50);
    modal->SetBackdropClicked(Note("backdrop"));
    Native().Click(5, 5);
    Native().Click(120, 60);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"backdrop"}));
    EXPECT_TRUE(panel->IsFocused());
    modal->SetCloseOnBackdrop(false);
    Native().Click(5, 5);
    Pump();
    EXPECT_EQ(TakeNotes(), Notes{});
}

TEST_F(WidgetsTest, AModalMayOpenFromATimer) {
    Button* button = MakeButton();
    Native().PointerMove(5, 5);
    Pump();
    button->AddTimer(0.0, [this](Window*) {
        auto* modal = layer->Create<Modal>();
        gui.ChangeUnderPointer([&] { modal->SetSize(Width, Height); });
        return WidgetEventRet::Done;
    });
    Tick(2);
    EXPECT_EQ(layer->GetWidgets().size(), 2U);
    EXPECT_EQ(button->GetState(), Button::State::Normal);
}

// 100 high: the track runs from 23 on for 54 pixels, the thumb is 30 high.
class ScrollbarTest : public WidgetsTest {
protected:
    ScrollbarTest() {
        bar->SetValueChanged([this](Window*) {
            values.push_back(bar->GetValue());
            return WidgetEventRet::Keep;
        });
    }

    Scrollbar* bar = layer->Create<Scrollbar>();
    std::vector<float> values;
};

TEST_F(ScrollbarTest, ArrowsStepAndTheThumbFollows) {
    bar->SetStep(0.75F);
    Native().Click(10, 95);
    Pump();
    EXPECT_EQ(bar->GetThumb()->GetY(), 23 + 18);
    Native().Click(10, 95);
    Pump();
    EXPECT_EQ(bar->GetThumb()->GetBottom(), 100 - 23) << "at its end";
    Native().Click(10, 5);
    Pump();
    EXPECT_EQ(values, (std::vector<float>{0.75F, 1.0F, 0.25F}));
}

TEST_F(ScrollbarTest, TheThumbsLengthIsItsShareButNeverTooShort) {
    struct Case {
        int height;
        float ratio;
        int thumb;
    };
    for (const Case& test : {Case{100, 0.5F, 27}, Case{100, 0.1F, 20}, Case{100, 7.0F, 54},
                             Case{60, 0.5F, 14}, Case{46, 0.5F, 20}}) {
        bar->SetSize(20, test.height);
        bar->SetThumbRatio(test.ratio);
        EXPECT_EQ(bar->GetThumb()->GetHeight(), test.thumb) << test.height;
    }
    bar->SetSize(12, 100);
    bar->SetArrowsVisible(false);
    bar->SetThumbRatio(0.5F);
    bar->SetValue(1.0F);
    EXPECT_EQ(bar->GetThumb()->GetRect(), (Rect{0, 50, 12, 100}));
}

TEST_F(ScrollbarTest, SmoothingGlidesToTheTarget) {
    bar->SetTargetValue(0.5F);
    EXPECT_EQ(bar->GetValue(), 0.5F);
    bar->SetSmoothing(0.5F);
    bar->SetTargetValue(2.0F);
    Tick();
    EXPECT_EQ(bar->GetValue(), 0.75F);
    Tick(20);
    EXPECT_EQ(bar->GetValue(), 1.0F);
    const std::size_t settled = values.size();
    Tick(5);
    EXPECT_EQ(values.size(), settled);
}

TEST_F(ScrollbarTest, AThumbThatSlidesAwayLosesItsHover) {
    Native().PointerMove(10, 30);
    Pump();
    EXPECT_EQ(bar->GetThumb()->GetState(), Button::State::Hover);
    bar->SetValue(1.0F);
    EXPECT_EQ(bar->GetThumb()->GetState(), Button::State::Normal);
}

}  // namespace
}  // namespace DirectGL
