#include <array>

#include "directgl/frame_window.h"
#include "gui_fixture.h"

namespace DirectGL {
namespace {

class InputTest : public GuiTest {
protected:
    /// A box that notes its pointer events under its letter.
    Window* Noting(Window* box, const std::string& letter) {
        box->SetMouseEnter(Note(letter + " enter"));
        box->SetMouseLeave(Note(letter + " leave"));
        box->SetMouseDown(Note(letter + " down"));
        box->SetMouseUp(Note(letter + " up"));
        box->SetFocus(Note(letter + " focus"));
        box->SetBlur(Note(letter + " blur"));
        box->SetPressCancelled(Note(letter + " cancelled"));
        return box;
    }

    Window* a = Noting(MakeBox(0, 0, 50, 50, L"a"), "a");
    Window* b = Noting(MakeBox(60, 0, 50, 50, L"b"), "b");
};

TEST_F(InputTest, AClickGoesFocusDownUpAndHoldsThePointer) {
    Native().PointerMove(10, 10);
    Native().LeftDown(10, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a enter", "a focus", "a down"}));
    EXPECT_TRUE(Native().captured);
    Native().PointerMove(70, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), Notes{}) << "no enter or leave while a button is held";
    Native().LeftUp(70, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a up", "a leave", "b enter"}));
    EXPECT_FALSE(Native().captured);
}

TEST_F(InputTest, APressOnEmptySpaceTakesTheFocusAway) {
    Native().Click(10, 10);
    Native().Click(150, 90);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a enter", "a focus", "a down", "a up", "a leave", "a blur"}));
    EXPECT_EQ(gui.GetFocused(), nullptr);
}

TEST_F(InputTest, LeavingTheWindowLeavesTheWidgetAndComingBackEntersIt) {
    Native().PointerMove(10, 10);
    Native().PointerLeave();
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a enter", "a leave"}));
    a->Hide();
    a->Show();
    EXPECT_EQ(TakeNotes(), Notes{}) << "nothing is under a pointer that is elsewhere";
    Native().PointerMove(10, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a enter"}));
}

TEST_F(InputTest, APressThatIsTakenAwayEndsWithoutAnUp) {
    Native().LeftDown(10, 10);
    Pump();
    TakeNotes();
    Native().StealCapture();
    Native().LeftUp(70, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a cancelled", "a enter", "a leave", "b enter"}))
        << "the release is nobody's";
    Native().LeftUp(70, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"b up"}));

    Native().LeftDown(10, 10);
    Pump();
    TakeNotes();
    Native().Push({.type = Platform::EventType::PointerMove, .point = {70, 10}});
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a cancelled"})) << "a move without the button";
    EXPECT_FALSE(Native().captured);
}

TEST_F(InputTest, ThePointerIsSomewhereElseAfterAPressThatEndsOutside) {
    const std::array ends{std::function<void()>([this] { Native().StealCapture(); }),
                          std::function<void()>([this] { Native().LeftUp(-5, 20); })};
    for (const auto& end : ends) {
        Native().PointerMove(10, 10);
        Native().LeftDown(10, 10);
        Native().PointerMove(-5, 20);
        Pump();
        EXPECT_EQ(gui.GetEntered(), a);
        end();
        Pump();
        EXPECT_EQ(gui.GetEntered(), nullptr);
        EXPECT_EQ(notes.back(), "a leave");
    }
}

TEST_F(InputTest, WhatIsCutOffIsToldThatItIsOver) {
    Window* child = Noting(Place(a->Create<Window>(), 0, 0, 20, 20), "child");
    Native().PointerMove(5, 5);
    Native().LeftDown(5, 5);
    Pump();
    TakeNotes();
    a->RemoveChild(child);
    EXPECT_EQ(TakeNotes(), (Notes{"child cancelled", "child blur", "child leave"}));
    Native().LeftUp(5, 5);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a up", "a enter"}));
}

TEST_F(InputTest, ABlurCallbackMayDeleteWhatIsAboutToGetTheFocus) {
    Native().Click(10, 10);
    a->SetBlur([this](Window*) {
        b->Remove();
        return WidgetEventRet::Done;
    });
    Native().Click(70, 10);
    Pump();
    EXPECT_EQ(gui.GetFocused(), nullptr);
    Tick();
    Native().Press('X');
    Pump();
}

TEST_F(InputTest, AWidgetThatTakesTheFocusAfterItsEndLosesItWithItsLife) {
    b->Remove();
    b->Focus();
    Tick();
    EXPECT_EQ(gui.GetFocused(), nullptr);
}

TEST_F(InputTest, RightButtonsHaveACaptureOfTheirOwn) {
    a->SetRightDown(Note("a right down"));
    a->SetRightUp(Note("a right up"));
    b->SetRightUp(Note("b right up"));
    Native().RightDown(10, 10);
    Native().RightUp(70, 10);
    Native().RightUp(70, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a right down", "a right up", "b enter", "b right up"}));
}

TEST_F(InputTest, HidingWhatIsUnderThePointerEntersWhatLiesBehind) {
    Window* cover = Noting(MakeBox(0, 0, 50, 50, L"c"), "c");
    Native().PointerMove(10, 10);
    Pump();
    cover->Hide();
    EXPECT_EQ(TakeNotes(), (Notes{"c enter", "c leave", "a enter"}));
    cover->Show();
    EXPECT_EQ(TakeNotes(), (Notes{"a leave", "c enter"}));
    Native().LeftDown(10, 10);
    Pump();
    TakeNotes();
    cover->Hide();
    EXPECT_EQ(TakeNotes(), Notes{}) << "not while a button is held";
    Native().LeftUp(10, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"c up", "c leave", "a enter"}));
}

TEST_F(InputTest, AWidgetThatHidesInItsLeaveDoesNotConfuseTheHover) {
    a->SetMouseLeave([this](Window*) {
        notes.emplace_back("a leave");
        b->Hide();
        return WidgetEventRet::Keep;
    });
    Native().PointerMove(10, 10);
    Native().PointerMove(70, 10);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a enter", "a leave"}));
    EXPECT_EQ(gui.GetEntered(), nullptr);
}

TEST_F(InputTest, TheWheelClimbsToTheNearestCallback) {
    Window* inner = Place(a->Create<Window>(), 0, 0, 20, 20);
    WheelEvent seen;
    a->SetWheel([&](Window* widget) {
        seen = widget->GetWheelEvent();
        return WidgetEventRet::Keep;
    });
    Native().Turn(5, 5, -300, Platform::ModifierShift);
    Pump();
    EXPECT_EQ(seen.down, 1);
    EXPECT_EQ(seen.notches, 2);
    EXPECT_EQ(seen.modifiers, Platform::ModifierShift);
    inner->SetWheel(Note("inner"));
    seen = {};
    Native().Turn(5, 5, 120);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"inner"}));
    EXPECT_EQ(seen.notches, 0);
}

TEST_F(InputTest, OnlyAFrameConfinesItsChildren) {
    Window* plainChild = Place(a->Create<Window>(), 0, 60, 20, 20);
    FrameWindow* frame = layer->Create<FrameWindow>();
    Place(frame, 120, 0, 50, 50);
    Window* framedChild = Place(frame->Create<Window>(), 0, 60, 20, 20);
    EXPECT_EQ(gui.HitTest({5, 65}), plainChild);
    EXPECT_EQ(gui.HitTest({125, 65}), nullptr);
    framedChild->SetPosition(0, 30);
    EXPECT_EQ(gui.HitTest({125, 35}), framedChild);
    framedChild->DisableMouse();
    EXPECT_EQ(gui.HitTest({125, 35}), frame);
    EXPECT_EQ(gui.HitTest({170, 50}), frame) << "right and bottom edges count";
    EXPECT_EQ(gui.HitTest({171, 50}), nullptr);
}

TEST_F(InputTest, AWidgetMayBeDeletedFromItsOwnClick) {
    Window* child = Noting(Place(a->Create<Window>(), 0, 0, 20, 20), "child");
    child->SetMouseUp([this](Window* widget) {
        notes.emplace_back("child up");
        widget->GetParent()->Remove();
        a->Remove();
        return WidgetEventRet::Done;
    });
    Native().Click(5, 5);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"child enter", "child focus", "child down", "child up"}));
    EXPECT_EQ(gui.GetFocused(), nullptr) << "before the widget is destroyed";
    EXPECT_EQ(gui.GetEntered(), nullptr);
    EXPECT_EQ(layer->FindByName(L"a"), nullptr);
    Tick();
    EXPECT_EQ(layer->GetWidgets().size(), 1U);
}

TEST_F(InputTest, AFocusCallbackMayDeleteThePressedWidget) {
    a->SetFocus([](Window* widget) {
        widget->Remove();
        return WidgetEventRet::Keep;
    });
    Native().Click(10, 10);
    Pump();
    Tick();
    EXPECT_EQ(TakeNotes(), (Notes{"a enter"}));
}

}  // namespace
}  // namespace DirectGL
