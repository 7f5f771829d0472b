#include "core/app_loop.h"

#include "common/boot_log.h"
#include "core/button_file.h"
#include "core/globals.h"
#include "core/handoff_flow.h"
#include "core/install_flow.h"
#include "core/launcher_window.h"
#include "core/move_flow.h"
#include "core/play.h"
#include "core/progress_report.h"
#include "core/relink_flow.h"
#include "core/run.h"
#include "core/uninstall_flow.h"
#include "install/game_client.h"
#include "platform/clock.h"

namespace Launcher {

namespace {

constexpr double PauseMilliseconds = 1.0;
/// While nobody looks and nothing is under way.
constexpr double IdlePauseMilliseconds = 16.0;
constexpr int LoggedTicks = 3;

}  // namespace

// The order is part of the program's behaviour.
const AppLoop::Step AppLoop::Steps[] = {
    {nullptr, &AppLoop::AutoQuit},
    {nullptr, &AppLoop::TestMinimizing},
    {nullptr, &AppLoop::AnswerSurfaceRequest},
    {nullptr, &AppLoop::FollowHandoffWorker},
    {nullptr, &AppLoop::FollowStandDown},
    {nullptr, &AppLoop::RevealWindow},
    {nullptr, &AppLoop::FollowPredecessor},
    {nullptr, &AppLoop::TakeTreeOver},
    {nullptr, &AppLoop::CountTick},
    {"AppLoop:   A newsFeed.Poll -- entering", nullptr},
    {nullptr, &AppLoop::PressButtons},
    {nullptr, &AppLoop::RunPeriodicJobs},
    {"AppLoop:   C state switch -- entering", &AppLoop::MoveState},
    {"AppLoop:   D RefreshUi -- entering", &AppLoop::RefreshUi},
    {"AppLoop:   E tick complete, returning", nullptr},
};

AppLoop::AppLoop(DirectGL::Gui& gui, SingleInstance& instance, const Switches& switches)
    : gui_(gui), instance_(instance), switches_(switches) {}

double AppLoop::Tick(double time) {
    if (!firstTime_) {
        firstTime_ = time;
        loggedState_ = g_state;
    }
    for (const Step& step : Steps) {
        if (step.entering && loggedTicks_ <= 1) BootLog(step.entering);
        if (step.run) (this->*step.run)(time);
    }
    return IsIdle() ? IdlePauseMilliseconds : PauseMilliseconds;
}

bool AppLoop::IsIdle() const {
    const Platform::NativeWindow* window = gui_.GetWindow();
    return window && window->IsMinimized() && !IsPatching(g_state) && !revealPending_ &&
           g_state != State::Halt;
}

void AppLoop::AwaitPredecessor(std::uint32_t processId, bool holdRun) {
    predecessor_.Await(processId);
    runHeld_ = holdRun;
}

void AppLoop::AutoQuit(double time) {
    if (!switches_.autoQuitSeconds || g_state == State::Halt) return;
    if (time - *firstTime_ <= *switches_.autoQuitSeconds) return;
    BootLog("autoquit: requesting Halt");
    g_state = State::Halt;
}

void AppLoop::TestMinimizing(double time) {
    Platform::NativeWindow* window = gui_.GetWindow();
    if (!switches_.minimizeTest || !window) return;
    const double elapsed = time - *firstTime_;
    if (minimizeStage_ == 0 && elapsed > 3.0) {
        ++minimizeStage_;
        BootLog("minimizetest: SW_MINIMIZE");
        window->Minimize();
    } else if (minimizeStage_ == 1 && elapsed > 6.0) {
        ++minimizeStage_;
        BootLog("minimizetest: SW_RESTORE");
        window->Restore();
    } else if (minimizeStage_ == 2 && elapsed > 7.0) {
        ++minimizeStage_;
        const Platform::Size client = window->GetClientSize();
        BootLogF("minimizetest: restored -- client=%dx%d iconic=%d visible=%d", client.width,
                 client.height, window->IsMinimized(), window->IsVisible());
    } else if (elapsed > 11.0 && g_state != State::Halt) {
        BootLog("minimizetest: requesting Halt");
        g_state = State::Halt;
    }
}

void AppLoop::AnswerSurfaceRequest(double) {
    if (!instance_.TakeSurfaceRequest()) return;
    Platform::NativeWindow* window = gui_.GetWindow();
    if (!window) return;
    if (window->IsForeground()) {
        BootLog("surface: already in front -- minimising");
        window->Minimize();
        return;
    }
    BootLog("surface: raising");
    if (window->IsMinimized()) window->Restore();
    window->BringToForeground();
}

void AppLoop::FollowHandoffWorker(double) {
    FollowHandoff();
}

void AppLoop::FollowStandDown(double) {
    if (!g_standDown.IsUnderWay() || g_state == State::Halt) return;
    const StandDown::Answer answer = g_standDown.Look();
    if (answer == StandDown::Answer::Pending) return;
    const bool isUp = answer == StandDown::Answer::ReplacementIsUp;
    BootLog(isUp ? "handoff: replacement is up -- standing down"
                 : "handoff: replacement did not signal in time -- standing down anyway");
    Platform::NativeWindow* window = gui_.GetWindow();
    if (isUp && window) window->Hide();
    g_state = State::Halt;
}

void AppLoop::RevealWindow(double) {
    if (!revealPending_) return;
    if (!revealBaseline_) {
        revealBaseline_ = gui_.GetLastRenderTime();
        revealTick_ = Platform::TickMilliseconds();
    }
    const Reveal reveal = LookAtReveal(*revealBaseline_, gui_.GetLastRenderTime(),
                                       Platform::TickMilliseconds() - revealTick_);
    if (reveal == Reveal::Pending) return;
    revealPending_ = false;
    if (Platform::NativeWindow* window = gui_.GetWindow()) {
        window->Show();
        window->Activate();
    }
    BootLog(reveal == Reveal::Composited
                ? "reveal: composited surface shown, releasing the previous instance"
                : "reveal: no composite within 250 ms -- showing anyway");
    predecessor_.Release();
}

void AppLoop::FollowPredecessor(double) {
    // Who is closed meanwhile begins nothing.
    if (!predecessor_.IsAwaited() || revealPending_ || g_state == State::Halt) return;
    const Wait wait = predecessor_.Look();
    if (wait == Wait::Pending) return;
    // Whether another one is there does not matter: this one was sent to stay.
    (void)instance_.Join();
    OpenBootLogWhenFree();
    takeOver_.Settle(wait);
    if (!runHeld_) return;
    runHeld_ = false;
    BootLog(wait == Wait::Gone
                ? "relaunch: the window we replaced has gone -- starting the run"
                : "relaunch: the window we replaced outstayed the ceiling -- starting the run "
                  "anyway");
    StartRun(switches_.checkOnly);
}

void AppLoop::TakeTreeOver(double) {
    if (g_state != State::Halt) takeOver_.Step();
}

void AppLoop::CountTick(double) {
    if (loggedTicks_ >= LoggedTicks) return;
    BootLogF("AppLoop: tick %d", loggedTicks_);
    ++loggedTicks_;
}

void AppLoop::PressButtons(double time) {
    PressButtonsOfFile(time, switches_, PositionOf(gui_));
}

void AppLoop::RunPeriodicJobs(double time) {
    if (clientCount_.IsDue(time)) g_clientCount = CountRunningClients(g_installDir);
    FollowInstall();
    FollowUninstall();
    FollowMove();
    FollowRelink();
}

void AppLoop::MoveState(double time) {
    LogStateChange();
    if (IsPatching(g_state)) {
        StepPatch();
    } else if (g_state == State::Halt) {
        BootLog("AppLoop: Halt -> gui.Quit()");
        gui_.Quit();
    }
    LogStateChange();
    readyWork_.Step(time, gui_.GetWindow());
}

void AppLoop::StepPatch() {
    g_state = g_patch.Tick();
    if (switches_.checkOnly && g_state == State::Update) {
        BootLog("checkonly: reached Update, stopping before the first write");
        g_state = State::Halt;
    }
}

void AppLoop::LogStateChange() {
    if (g_state == loggedState_) return;
    BootLogF("state: %s -> %s", StateName(loggedState_), StateName(g_state));
    loggedState_ = g_state;
}

void AppLoop::RefreshUi(double time) {
    WatchSpawn();
    ReportProgress(time);
}

}  // namespace Launcher
