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

TEST_F(AppLoopTest, MaintenanceAndRepairWaitForPassAndClientsAndRetryDoesNot) {
    g_state = State::Verify;
    EXPECT_FALSE(MayMaintain("settings"));
    g_state = State::ErrFatal;
    EXPECT_TRUE(MayMaintain("settings"));
    g_clientCount = 1;
    EXPECT_FALSE(MayMaintain("settings"));
    g_installDir = L"C:\\NoSuchGame";
    ConfigurePatch();
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
