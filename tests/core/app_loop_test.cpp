#include "core/app_loop.h"

#include <gtest/gtest.h>

#include "core/globals.h"
#include "core/run.h"
#include "platform/headless/headless_desktop.h"
#include "platform/headless/held_clock.h"
#include "platform/headless/recording_graphics.h"

namespace Launcher {
namespace {

/// A loop over a window that nobody sees. Ticks are given their time.
class AppLoopTest : public testing::Test {
protected:
    void SetUp() override {
        g_state = State::Ready;
        g_clientCount = 0;
        gui_.SetShowOnCreate(false);
        ASSERT_TRUE(gui_.Create({.title = L"", .x = 0, .y = 0, .width = 360, .height = 540}));
        window_ = desktop_.Window();
    }

    State StateAfterTick(double time) {
        (void)loop_.Tick(time);
        return g_state;
    }

    Platform::RecordingGraphics graphics_;
    Platform::HeldClock clock_;
    Platform::HeadlessDesktop desktop_{graphics_, clock_};
    DirectGL::Gui gui_{desktop_};
    Platform::HeadlessWindow* window_ = nullptr;
    SingleInstance instance_{L"app_loop_test.exe"};
    Switches switches_;
    AppLoop loop_{gui_, instance_, switches_};
};

TEST_F(AppLoopTest, RestsOnlyWhileMinimizedWithNothingUnderWay) {
    struct Case {
        State state;
        bool minimized;
        double pauseMilliseconds;
    };
    for (const Case& look : {Case{State::Ready, false, 1.0}, Case{State::Ready, true, 16.0},
                             Case{State::ErrNetwork, true, 16.0}, Case{State::Halt, true, 1.0}}) {
        SCOPED_TRACE(StateName(look.state));
        g_state = look.state;
        if (look.minimized) window_->Minimize();
        EXPECT_EQ(loop_.Tick(1.0), look.pauseMilliseconds);
        if (look.minimized) window_->Restore();
    }
}

TEST_F(AppLoopTest, WaitsForThePredecessorOnlyOnceItIsRevealed) {
    loop_.ArmReveal();
    loop_.AwaitPredecessor(0, false);
    StateAfterTick(1.0);
    SingleInstance later(L"app_loop_test.exe");
    EXPECT_FALSE(later.Join());
}

TEST_F(AppLoopTest, StaysClosedWhenItsPredecessorGoes) {
    g_installDir = L"C:\\NoSuchGame";
    ConfigurePatch();
    loop_.AwaitPredecessor(0, true);
    g_state = State::Halt;
    EXPECT_EQ(StateAfterTick(1.0), State::Halt);
}

TEST_F(AppLoopTest, IsShownWithItsFirstFrame) {
    loop_.ArmReveal();
    StateAfterTick(1.0);
    EXPECT_FALSE(window_->IsVisible());
    clock_.Advance(0.016);
    gui_.RenderPass();
    StateAfterTick(1.016);
    EXPECT_TRUE(window_->IsVisible());
    EXPECT_TRUE(window_->IsForeground());
}

TEST_F(AppLoopTest, MinimizeTestRunsItsScript) {
    switches_.minimizeTest = true;
    constexpr struct {
        double time;
        bool minimized;
        State state;
    } Ticks[] = {
        {100.0, false, State::Ready}, {103.0, false, State::Ready}, {103.1, true, State::Ready},
        {106.0, true, State::Ready},  {106.1, false, State::Ready}, {107.1, false, State::Ready},
        {111.0, false, State::Ready}, {111.1, false, State::Halt},
    };
    for (const auto& tick : Ticks) {
        EXPECT_EQ(StateAfterTick(tick.time), tick.state) << tick.time;
        EXPECT_EQ(window_->IsMinimized(), tick.minimized) << tick.time;
    }
}

TEST_F(AppLoopTest, MaintenanceWaitsForThePassAndTheClients) {
    for (int value = 0; value <= 41; ++value) {
        g_state = static_cast<State>(value);
        EXPECT_EQ(MayMaintain("settings"), !IsPatching(g_state)) << StateName(g_state);
    }
    g_state = State::Ready;
    g_clientCount = 1;
    EXPECT_FALSE(MayMaintain("settings"));
}

TEST_F(AppLoopTest, RepairIsRefusedBesideAClientAndRetryIsNot) {
    g_installDir = L"C:\\NoSuchGame";
    ConfigurePatch();
    g_clientCount = 1;
    g_state = State::ErrFatal;
    g_statusMessage = L"The game client could not be found";
    RetryRun(true, true);
    EXPECT_EQ(g_state, State::ErrFatal);
    EXPECT_FALSE(g_statusMessage.empty());
    RetryRun(false, true);
    EXPECT_EQ(g_state, State::Manifest);
    EXPECT_TRUE(g_statusMessage.empty());
    g_patch.Shutdown();
    g_clientUpdate.Stop();
}

}  // namespace
}  // namespace Launcher
