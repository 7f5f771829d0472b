#include "directgl/button.h"
#include "directgl/modal.h"
#include "directgl/scrollbar.h"
#include "directgl/toggle.h"
#include "gui_fixture.h"

namespace DirectGL {
namespace {

class WidgetsTest : public GuiTest {
protected:
    Button* MakeButton() {
        auto* button = Make<Button>(0, 0, 40, 20);
        button->SetClicked(Note("clicked"));
        return button;
    }
};

TEST_F(WidgetsTest, AButtonForgetsAPressThatIsTakenFromItAndShowsIt) {
    Button* button = MakeButton();
    Native().LeftDown(5, 5);
    Native().StealCapture();
    Native().LeftUp(5, 5);
    Pump();
    EXPECT_EQ(button->GetState(), Button::State::Hover);
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Hand);
    Native().LeftDown(5, 5);
    Pump();
    button->SetEnabled(false);
    EXPECT_EQ(button->GetState(), Button::State::Normal);
    Native().LeftUp(5, 5);
    Native().Click(5, 5);
    Pump();
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Arrow);
    button->SetEnabled(true);
    Native().LeftDown(150, 90);
    Native().LeftUp(5, 5);
    Pump();
    EXPECT_EQ(button->GetState(), Button::State::Hover);
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Hand);
    EXPECT_EQ(TakeNotes(), Notes{});
    gui.ClearHover();
    EXPECT_EQ(button->GetState(), Button::State::Normal);
    Native().PointerMove(6, 6);
    Pump();
    EXPECT_EQ(button->GetState(), Button::State::Hover) << "found again at the next move";
}

TEST_F(WidgetsTest, AButtonsHoverChildComesAndGoesWithThePointer) {
    Button* button = MakeButton();
    auto* hover = Place(button->Create<Window>(), 0, 0, 40, 20);
    button->SetHoverChild(hover);
    Native().Click(5, 5);
    Pump();
    EXPECT_TRUE(hover->IsVisible());
    EXPECT_EQ(TakeNotes(), (Notes{"clicked"})) << "it lets the press through";
    button->SetMouseLeave(Note("leave"));
    MakeBox(50, 0, 20, 20)->SetMouseEnter(Note("enter"));
    Native().PointerMove(60, 5);
    Pump();
    EXPECT_FALSE(hover->IsVisible());
    EXPECT_EQ(TakeNotes(), (Notes{"leave", "enter"})) << "though the leave hides the child";
    button->Create<Window>();
    button->DeleteChildren();
    ASSERT_EQ(button->GetChildren().size(), 1U) << "a button's part stays";
    button->DeleteChild(hover);
    Tick();
    Native().PointerMove(5, 5);
    Pump();
    EXPECT_EQ(button->GetState(), Button::State::Hover);
}

TEST_F(WidgetsTest, AToggleSlidesFromWhereItIs) {
    auto* toggle = Make<Toggle>(0, 0, 40, 20);
    toggle->SetChanged(Note("changed"));
    Native().Click(5, 5);
    Pump();
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
    Native().LeftDown(5, 5);
    Native().LeftUp(150, 90);
    Pump();
    EXPECT_FALSE(toggle->IsOn()) << "a release outside does not flip it";
}

TEST_F(WidgetsTest, AModalMayOpenFromATimerAndTellsOfClicksBesideItsPanel) {
    Button* button = MakeButton();
    Native().PointerMove(5, 5);
    Pump();
    Modal* modal = nullptr;
    button->AddTimer(0.0, [&](Window*) {
        modal = layer->Create<Modal>();
        gui.ChangeUnderPointer([&] { modal->SetSize(Width, Height); });
        return WidgetEventRet::Done;
    });
    Tick(2);
    ASSERT_EQ(layer->GetWidgets().size(), 2U);
    EXPECT_EQ(button->GetState(), Button::State::Normal);
    Place(modal->Create<Window>(), 100, 50, 50, 50);
    modal->SetBackdropClicked(Note("backdrop"));
    Native().Click(5, 5);
    Native().Click(120, 60);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"backdrop"}));
    modal->SetCloseOnBackdrop(false);
    Native().Click(5, 5);
    Pump();
    EXPECT_EQ(TakeNotes(), Notes{});
}

// A scrollbar is 100 high: its track runs from 23 on for 54 pixels, its thumb is 30 high.

TEST_F(WidgetsTest, AScrollbarsArrowsStepAndItsThumbFollows) {
    auto* bar = layer->Create<Scrollbar>();
    std::vector<float> values;
    bar->SetValueChanged([&](Window*) {
        values.push_back(bar->GetValue());
        return WidgetEventRet::Keep;
    });
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
    Native().PointerMove(10, 40);
    Pump();
    EXPECT_EQ(bar->GetThumb()->GetState(), Button::State::Hover);
    bar->SetValue(1.0F);
    EXPECT_EQ(bar->GetThumb()->GetState(), Button::State::Normal) << "it slid away";
}

TEST_F(WidgetsTest, AScrollbarsThumbHasItsShareButIsNeverTooShort) {
    struct Case {
        int height;
        float ratio;
        int thumb;
    };
    auto* bar = layer->Create<Scrollbar>();
    for (const Case& test : {Case{100, 0.5F, 27}, Case{100, 0.1F, 20}, Case{100, 7.0F, 54},
                             Case{60, 0.5F, 14}, Case{46, 0.5F, 20}}) {
        bar->SetSize(20, test.height);
        bar->SetThumbRatio(test.ratio);
        EXPECT_EQ(bar->GetThumb()->GetHeight(), test.thumb) << test.height;
    }
}

}  // namespace
}  // namespace DirectGL
