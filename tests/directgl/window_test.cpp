#include "gui_fixture.h"

namespace DirectGL {
namespace {

using WindowTest = GuiTest;

TEST_F(WindowTest, ACallbackMayRefillItsSlotOrResetItsWidget) {
    Window* box = MakeBox(0, 0, 10, 10);
    for (const auto answer : {WidgetEventRet::Done, WidgetEventRet::Keep}) {
        box->SetMoved([&, answer](Window* widget) {
            widget->SetPosition(5, 5);  // its own event does not come back to it
            widget->SetMoved(Note("second"));
            return answer;
        });
        box->SetPosition(1, 1);
        box->SetPosition(2, 2);
        EXPECT_EQ(TakeNotes(), (Notes{"second"}));
    }
    box->SetMoved([](Window* widget) {
        widget->Reset();
        return WidgetEventRet::Keep;
    });
    box->SetPosition(1, 1);
    box->SetMouseDown(Note("down"));
    box->SetPosition(3, 3);
    EXPECT_EQ(box->GetX(), 3) << "the callback is gone with the reset";
}

TEST_F(WindowTest, ChildrenMoveBetweenParentsAndOrphansWait) {
    Window* first = MakeBox(0, 0, 10, 10);
    Window* second = MakeBox(0, 0, 10, 10);
    Window* child = first->Create<Window>(L"child");
    second->AddChild(child);
    second->AddChild(child);
    second->AddChild(second);
    child->AddChild(second);
    EXPECT_TRUE(first->GetChildren().empty());
    ASSERT_EQ(second->GetChildren().size(), 1U);
    EXPECT_EQ(child->GetParent(), second);
    second->RemoveChild(child);
    first->RemoveChild(child);
    EXPECT_EQ(child->GetParent(), nullptr);
    Tick();
    child->SetParentWindow(first);
    EXPECT_EQ(first->GetChildren().front().get(), child);
    EXPECT_EQ(layer->FindByName(L"child"), child);
    first->AddChild(second);
    EXPECT_EQ(layer->GetWidgets().size(), 1U) << "a top-level widget became a child";
    first->RemoveChild(child);
    child->Remove();
    EXPECT_EQ(layer->FindByName(L"child"), nullptr);
    Tick();
    EXPECT_EQ(gui.TakeOrphan(child), nullptr) << "an orphan may end";
}

TEST_F(WindowTest, NamesBelongToTheirLastBearerAndGoWithItsTreeToAnotherLayer) {
    Window* first = layer->Create<Window>(L"name");
    Window* second = layer->Create<Window>(L"name");
    Window* child = second->Create<Window>(L"child");
    first->Remove();
    Tick();
    EXPECT_EQ(layer->FindByName(L"name"), second);
    Layer* upper = gui.AddLayer("upper");
    // The layers end in the order of their making, this one last.
    upper->Create<Window>()->AddChild(second);
    EXPECT_EQ(child->GetLayer(), upper);
    EXPECT_EQ(upper->FindByName(L"child"), child);
    EXPECT_EQ(layer->FindByName(L"name"), nullptr);
    second->Remove();
    second->Remove();
    EXPECT_EQ(upper->FindByName(L"name"), nullptr) << "before the widget is destroyed";
}

TEST_F(WindowTest, DeletedWidgetsAreDestroyedByTheNextUpdate) {
    Window* box = MakeBox(0, 0, 10, 10);
    Window* child = box->Create<Window>();
    box->DeleteChildren();
    box->AddChild(child);
    EXPECT_TRUE(box->GetChildren().empty()) << "its end is settled";
    Frame();
    EXPECT_TRUE(gui.IsDoomed(child));
    Tick();
    EXPECT_FALSE(gui.IsDoomed(child));
}

TEST_F(WindowTest, AFadeTakesItsTicksAndMayBeChained) {
    Window* box = MakeBox(0, 0, 10, 10);
    box->FadeTo(0.0F, 0.05, [this](Window* widget) {
        notes.emplace_back("out");
        widget->FadeTo(1.0F, 0.0, Note("in"));
        return WidgetEventRet::Done;
    });
    Tick(2);
    EXPECT_NEAR(box->GetOpacity(), 1.0F / 3.0F, 1e-5);
    EXPECT_EQ(TakeNotes(), Notes{});
    Tick();
    EXPECT_EQ(box->GetOpacity(), 0.0F);
    Tick();
    EXPECT_EQ(box->GetOpacity(), 1.0F) << "no seconds take one tick";
    EXPECT_EQ(TakeNotes(), (Notes{"out", "in"}));
}

TEST_F(WindowTest, MotionsReachTheirTargetInEveryDirection) {
    struct Case {
        Point from;
        Point to;
        int ticks;
    };
    for (const Case& motion : {Case{{0, 0}, {10, 3}, 3}, Case{{10, 10}, {0, 10}, 3},
                               Case{{0, 0}, {-10, 7}, 7}, Case{{5, 5}, {4, 6}, 30}}) {
        Window* box = MakeBox(motion.from.x, motion.from.y, 10, 10);
        box->MoveTo(motion.to, motion.ticks / 60.0, Note("moved"));
        box->ResizeTo({20, 5}, motion.ticks / 60.0, Note("resized"));
        Tick(motion.ticks + 1);  // the sum of the steps may fall a hair short
        EXPECT_EQ(box->GetPosition(), motion.to);
        EXPECT_EQ(box->GetSize(), (Size{20, 5}));
        EXPECT_EQ(TakeNotes().size(), 2U) << motion.ticks;
    }
}

TEST_F(WindowTest, TimersAreDueAfterTheirIntervalAndMayChangeTheList) {
    Window* box = MakeBox(0, 0, 10, 10);
    int second = 0;
    box->AddTimer(0.1, [&](Window* widget) {
        notes.emplace_back("first");
        widget->RemoveTimer(second);
        widget->AddTimer(0.0, Note("new"));
        return WidgetEventRet::Done;
    });
    second = box->AddTimer(0.1, Note("second"));
    box->AddTimer(0.1, Note("third"));
    Tick(5);
    EXPECT_EQ(TakeNotes(), Notes{});
    Tick();
    EXPECT_EQ(TakeNotes(), (Notes{"first", "third"}));
    Tick();
    EXPECT_EQ(TakeNotes(), (Notes{"new"}));
    box->AddTimer(0.0, [](Window* widget) {
        widget->Reset();
        return WidgetEventRet::Keep;
    });
    Tick(20);
    TakeNotes();
    Tick(20);
    EXPECT_EQ(TakeNotes(), Notes{});
}

TEST_F(WindowTest, ChildrenAddedDuringAPassWaitForTheNext) {
    Window* box = MakeBox(0, 0, 10, 10);
    Window* child = box->Create<Window>();
    child->SetUpdate([this, box](Window*) {
        notes.emplace_back("child");
        box->Create<Window>()->SetUpdate(Note("new"));
        return WidgetEventRet::Done;
    });
    Tick();
    EXPECT_EQ(TakeNotes(), (Notes{"child"}));
    Tick();
    EXPECT_EQ(TakeNotes(), (Notes{"new"}));
    box->Create<Window>()->SetUpdate([box](Window*) {
        box->DeleteChildren();
        return WidgetEventRet::Keep;
    });
    Tick();
    EXPECT_TRUE(box->GetChildren().empty());
}

}  // namespace
}  // namespace DirectGL
