#include <array>

#include "gui_fixture.h"

namespace DirectGL {
namespace {

TEST_F(GuiTest, AnEmptyWindowIsDrawnOnceAndThenOnlyWhenAskedFor) {
    EXPECT_EQ(Frame(), (Notes{"Clear #000000ff"}));
    EXPECT_EQ(Frame(), Notes{});
    Window* box = MakeBox(0, 0, 10, 10);
    while (!Frame().empty()) {
    }
    box->Invalidate();
    EXPECT_FALSE(Frame().empty());
    EXPECT_FALSE(Frame().empty()) << "an Invalidate forces two frames";
    EXPECT_TRUE(Frame().empty());
    gui.SetAlwaysRender();
    EXPECT_FALSE(Frame().empty());
}

TEST_F(GuiTest, ALayeredFrameStartsClearAndIsPresentedWithItsOpacityAndKey) {
    Native().Resize(Width + 6, Height + 29);  // its frame was taken away
    Native().FailTargets(1);
    gui.SetLayered();
    EXPECT_TRUE(Native().layered);
    EXPECT_EQ(gui.GetWidth(), Width + 6);
    EXPECT_EQ(gui.GetHeight(), Height + 29);
    EXPECT_EQ(Native().lastDevice, Platform::DeviceKind::Software) << "where there is no other";
    ASSERT_EQ(log.size(), 1U);
    EXPECT_TRUE(log[0].starts_with("DirectGL::Gui::_RecreateDeviceResources:")) << log[0];
    EXPECT_TRUE(log[0].ends_with("Result Failed 0x80004005 ")) << log[0];
    gui.EnableColorKey();
    gui.SetWindowOpacity(0.5F);
    EXPECT_EQ(Frame(), (Notes{"Clear #00000000"}));
    EXPECT_EQ(books->lastPresentation.opacity, 0.5F);
    EXPECT_EQ(books->lastPresentation.colorKey, 0x00FF00FFU);
}

TEST_F(GuiTest, LayersAreDrawnInTheOrderOfTheirMakingAndHitInReverse) {
    Window* above = Place(gui.AddLayer("upper")->Create<Window>(), 0, 0, 20, 20);
    Window* below = MakeBox(0, 0, 50, 50);
    below->SetColor(Red);
    above->SetColor(Blue);
    const Notes expected{"Clear #000000ff", "FillRectangle 0,0,50,50 #ff0000ff*1",
                         "FillRectangle 0,0,20,20 #0000ffff*1"};
    EXPECT_EQ(Frame(), expected);
    EXPECT_EQ(gui.HitTest({10, 10}), above);
    EXPECT_EQ(gui.HitTest({30, 30}), below);
}

TEST_F(GuiTest, FailedFramesRecoverAtOnceAndThenEveryHalfSecond) {
    struct Step {
        double wait;
        int failFrames;
        int failTargets;
        bool recovers;
    };
    const std::array steps{
        Step{0.0, 1, 0, true},   // the first of a run at once
        Step{0.1, 1, 0, false},  // too soon
        Step{0.45, 1, 0, true},  // 0.55 s after the last recovery
        Step{0.1, 0, 0, false},  // a good frame ends the run
        Step{0.1, 1, 1, true},   // so this is a first one again, but it gets no target
        Step{0.1, 0, 0, false},  // too soon, the more so without a target
        Step{0.45, 0, 0, true},
    };
    MakeBox(0, 0, 10, 10)->SetColor(Red);
    Frame();
    for (std::size_t i = 0; i < steps.size(); ++i) {
        clock.Advance(steps[i].wait);
        const int targetsBefore = Native().targetsAsked;
        books->failFrames = steps[i].failFrames;
        Native().FailTargets(steps[i].failTargets);
        // A frame that was lost is asked for again by itself.
        if (steps[i].failFrames > 0) gui.MarkDirty();
        Frame();
        EXPECT_EQ(Native().targetsAsked - targetsBefore, steps[i].recovers ? 1 : 0) << "step " << i;
        EXPECT_EQ(gui.GetTarget() == nullptr, i == 4 || i == 5) << "step " << i;
    }
    EXPECT_EQ(Frame(), (Notes{"Clear #000000ff", "FillRectangle 0,0,10,10 #ff0000ff*1"}));
}

TEST_F(GuiTest, WhileMinimisedNothingIsDrawnButUpdatesGoOn) {
    gui.SetAlwaysRender();
    int updates = 0;
    MakeBox(0, 0, 10, 10)->SetUpdate([&](Window*) {
        ++updates;
        return WidgetEventRet::Keep;
    });
    Native().Minimize();
    Pump();
    const int framesBefore = books->framesBegun;
    Frame();
    Tick();
    EXPECT_EQ(books->framesBegun, framesBefore);
    EXPECT_EQ(gui.GetRenderState(), Gui::RenderState::HeldBack);
    EXPECT_EQ(updates, 1);
    Native().SetMinimizedSilently(false);
    EXPECT_FALSE(Frame().empty()) << "restored without an event";
}

TEST_F(GuiTest, HandlersSeeEventsInOrderAndDecideWhatHappens) {
    using Platform::EventType;
    auto answer = MessageEventRet::NotHandled;
    const auto noting = [&](const std::string& name) {
        return [&, name](const Platform::Event&) {
            notes.push_back(name);
            return name == "second" ? answer : MessageEventRet::NotHandled;
        };
    };
    gui.AddAllMessagesEvent(noting("all"));
    gui.AddMessageEvent(EventType::Close, noting("window"));
    gui.AddMessageEvent(EventType::Close, noting("second"));
    gui.AddGlobalMessageEvent(EventType::Close, noting("global"));
    for (const auto handled : {MessageEventRet::Handled, MessageEventRet::HandledZero}) {
        answer = handled;
        Native().RequestClose();
        EXPECT_TRUE(gui.PumpEvents());
        EXPECT_EQ(TakeNotes(), (Notes{"global", "window", "second"}));
    }
    answer = MessageEventRet::NotHandled;
    Native().RequestClose();
    EXPECT_FALSE(gui.PumpEvents());
    EXPECT_EQ(TakeNotes(), (Notes{"global", "window", "second", "all", "all"}));
    EXPECT_FALSE(gui.HasWindow());
}

TEST_F(GuiTest, TheLoopSleepsAsTheCallbackSaysAndEndsWithQuit) {
    int ticks = 0;
    double first = 0.0;
    gui.MessageLoop([&](double time) {
        if (++ticks == 1) first = time;
        if (ticks == 3) {
            EXPECT_NEAR(time - first, 0.032, 1e-6);
            for (int i = 0; i < 3; ++i)
                gui.Quit();
        }
        const Gui::Guard nested(gui);
        return 16.9;
    });
    EXPECT_EQ(ticks, 3);
}

TEST_F(GuiTest, ThreadsPauseByTheirRates) {
    gui.SetFps(60);
    gui.SetUps(0);
    gui.StartRenderingThread();
    clock.WaitForSleepers(1);
    gui.StartUpdatingThread();
    clock.WaitForSleepers(2);
    EXPECT_EQ(clock.Sleeps(), (std::vector<std::uint32_t>{16, 33}));
    EXPECT_EQ(clock.FineDepth(), 1);
    clock.Release();
    gui.MessageLoop([&](double) {
        gui.Quit();
        return 0.0;
    });
    EXPECT_EQ(clock.FineDepth(), 0);
}

TEST_F(GuiTest, ALoopThatIsGivenTheLockIsAheadOfEveryFrame) {
    clock.Release();
    gui.SetAlwaysRender();
    auto opening = std::make_unique<Gui::Guard>(gui);
    gui.StartRenderingThread();
    // A frame that did not wait would be there by then.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    int ticks = 0;
    gui.MessageLoop(
        [&](double) {
            if (gui.GetLastRenderTime() > 0.0) gui.Quit();
            ++ticks;
            return 0.0;
        },
        std::move(opening));
    EXPECT_GT(ticks, 1);
}

TEST_F(GuiTest, ALoopThatEndsBeforeItsFirstCallGivesTheLockUp) {
    clock.Release();
    auto opening = std::make_unique<Gui::Guard>(gui);
    gui.StartRenderingThread();
    // By then it waits for the lock: the end of the loop would wait for it, and it for the loop.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    gui.Quit();
    int ticks = 0;
    gui.MessageLoop([&](double) { return ++ticks; }, std::move(opening));
    EXPECT_EQ(ticks, 0);
}

TEST_F(GuiTest, TheLoopEndsWhenTheWindowGoes) {
    gui.MessageLoop([&](double) {
        Native().DestroyFromOutside();
        return 1.0;
    });
    int ticks = 0;
    gui.MessageLoop([&](double) { return ++ticks; });
    EXPECT_EQ(ticks, 0);
}

TEST_F(GuiTest, ARefusedWindowFailsTheCreation) {
    desktop.refuseWindow = true;
    Gui other(desktop);
    EXPECT_FALSE(other.Create({.title = L"x", .width = 10, .height = 10}));
    EXPECT_FALSE(other.HasWindow());
}

}  // namespace
}  // namespace DirectGL
