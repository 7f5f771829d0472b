#include "directgl/button.h"
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

    Window* a = Noting(MakeBox(0, 0, 50, 50), "a");
    Window* b = Noting(MakeBox(60, 0, 50, 50), "b");
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
    Native().Click(150, 90);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"b leave", "a blur"})) << "empty space takes the focus away";
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
    Native().PointerMove(-5, 20);
    Native().StealCapture();
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a down", "a cancelled", "b leave"})) << "the pointer is outside";

    Native().LeftDown(10, 10);
    Native().Push({.type = Platform::EventType::PointerMove, .point = {70, 10}});
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a down", "a cancelled", "b enter"}))
        << "a move without the button";
    EXPECT_FALSE(Native().captured);
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

TEST_F(InputTest, WhoeverGetsTheFocusMayBeDeletedMeanwhile) {
    a->SetFocus([](Window* widget) {
        widget->Remove();
        return WidgetEventRet::Keep;
    });
    Native().Click(10, 10);
    Pump();
    a->Focus();
    EXPECT_EQ(TakeNotes(), (Notes{"a enter"})) << "no press of what is gone";
    Tick();
    EXPECT_EQ(gui.GetFocused(), nullptr) << "though it took the focus after its end";

    Window* c = MakeBox(0, 0, 50, 50);
    c->SetBlur([this](Window*) {
        b->Remove();
        return WidgetEventRet::Done;
    });
    Native().Click(10, 10);
    Native().Click(70, 10);
    Pump();
    EXPECT_EQ(gui.GetFocused(), nullptr);
    Tick();
    Native().Press('X');
    Pump();
}

TEST_F(InputTest, HidingWhatIsUnderThePointerEntersWhatLiesBehind) {
    Window* cover = Noting(MakeBox(0, 0, 50, 50), "c");
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
    Native().PointerLeave();
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"a leave"}));
    cover->Show();
    EXPECT_EQ(TakeNotes(), Notes{}) << "nothing is under a pointer that is elsewhere";
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
    a->SetWheel(Note("outer"));
    Native().Turn(5, 5, -300);
    Pump();
    EXPECT_EQ(a->GetWheelEvent().notches, 2);
    inner->SetWheel(Note("inner"));
    Native().Turn(5, 5, 120);
    Pump();
    EXPECT_EQ(TakeNotes(), (Notes{"outer", "inner"}));
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
    EXPECT_EQ(gui.HitTest({170, 50}), frame) << "right and bottom edges count";
    EXPECT_EQ(gui.HitTest({171, 50}), nullptr);
}

TEST_F(InputTest, AButtonMayRemoveItsParentInItsClick) {
    Window* panel = layer->Create<Window>(L"panel");
    auto* button = Place(panel->Create<Button>(), 120, 0, 40, 20);
    button->SetClicked([](Window* widget) {
        widget->GetParent()->Remove();
        widget->GetParent()->Remove();
        return WidgetEventRet::Done;
    });
    Native().PointerMove(125, 5);
    Pump();
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Hand);
    Native().Click(125, 5);
    Pump();
    EXPECT_EQ(Native().cursor, Platform::CursorShape::Arrow) << "no hand of what is gone";
    EXPECT_EQ(gui.GetFocused(), nullptr) << "before the widget is destroyed";
    EXPECT_EQ(gui.GetEntered(), nullptr);
    EXPECT_EQ(layer->FindByName(L"panel"), nullptr);
    Tick();
    EXPECT_EQ(layer->GetWidgets().size(), 2U);
}

}  // namespace
}  // namespace DirectGL
