#pragma once

#include <cstdint>
#include <optional>

#include "common/state.h"
#include "core/command_line.h"
#include "core/predecessor.h"
#include "core/ready_work.h"
#include "core/single_instance.h"
#include "core/take_over.h"
#include "core/timing.h"
#include "directgl/gui.h"

namespace Launcher {

/// The heart of the run: called over and over on the main thread with the interface's lock held,
/// it polls the workers, moves g_state and refreshes what is shown. A tick never blocks.
class AppLoop {
public:
    /// All three outlive the loop.
    AppLoop(DirectGL::Gui& gui, SingleInstance& instance, const Switches& switches);

    /// One tick. time is in seconds of a monotonic clock; the answer is how many milliseconds to
    /// sleep: one, and more for a minimised window with nothing to do.
    double Tick(double time);

    /// The window is to be shown with its first finished frame.
    void ArmReveal() { revealPending_ = true; }

    /// This instance replaces the process, and takes its place as the single one once that has
    /// ended. With holdRun the patch run starts then, too.
    void AwaitPredecessor(std::uint32_t processId, bool holdRun);

    /// This instance is a handoff copy: it does its work once the predecessor has ended.
    void ArmTakeOver(const HandoffArgs& handoff) { takeOver_.Arm(handoff); }

private:
    /// One thing that every tick does. The log line, where there is one, shows the first tick.
    struct Step {
        const char* entering;
        void (AppLoop::*run)(double time);
    };
    static const Step Steps[];

    void AutoQuit(double time);
    void TestMinimizing(double time);
    void AnswerSurfaceRequest(double time);
    void FollowHandoffWorker(double time);
    void FollowStandDown(double time);
    void RevealWindow(double time);
    void FollowPredecessor(double time);
    void TakeTreeOver(double time);
    void CountTick(double time);
    void PressButtons(double time);
    void RunPeriodicJobs(double time);
    void MoveState(double time);
    void RefreshUi(double time);

    bool IsIdle() const;
    void LogStateChange();
    void StepPatch();

    DirectGL::Gui& gui_;
    SingleInstance& instance_;
    const Switches& switches_;

    std::optional<double> firstTime_;
    int loggedTicks_ = 0;
    State loggedState_ = State::Boot;
    int minimizeStage_ = 0;

    bool revealPending_ = false;
    std::optional<double> revealBaseline_;
    std::uint64_t revealTick_ = 0;

    Predecessor predecessor_;
    bool runHeld_ = false;
    TakeOver takeOver_;

    ReadyWork readyWork_;
    Periodic clientCount_{2.0};
};

}  // namespace Launcher
