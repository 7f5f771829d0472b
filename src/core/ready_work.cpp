#include "core/ready_work.h"

#include "common/boot_log.h"
#include "core/globals.h"
#include "core/move_flow.h"
#include "core/play.h"
#include "core/relink_flow.h"
#include "core/run.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr double SecondsBetweenClientSwaps = 2.0;

/// The folder is being installed into, removed, moved or made the game's.
bool IsMaintaining() {
    return g_installEngine.GetProgress().running || GetMoveProgress().state == MoveState::Moving ||
           IsRelinking();
}

/// How the log tells of an outcome, before its detail; null for one that is not told.
const char* Telling(SelfUpdateOutcome outcome) {
    switch (outcome) {
        case SelfUpdateOutcome::Disabled:
            return "selfupdate: disabled -- ";
        case SelfUpdateOutcome::UpToDate:
            return "selfupdate: launcher is current";
        case SelfUpdateOutcome::CheckFailed:
            return "selfupdate: COULD NOT CHECK -- ";
        case SelfUpdateOutcome::Failed:
            return "selfupdate: update FAILED -- ";
        case SelfUpdateOutcome::Available:
            return "selfupdate: update available -- ";
        case SelfUpdateOutcome::NotStarted:
        case SelfUpdateOutcome::Running:
        case SelfUpdateOutcome::Staged:
            break;
    }
    return nullptr;
}

}  // namespace

void ReadyWork::Step(double time, Platform::NativeWindow* window) {
    const bool arrives = g_state == State::Ready && !wasReady_;
    wasReady_ = g_state == State::Ready;
    if (!wasReady_) return;
    FollowSelfUpdate(window);
    if (!arrives && time < nextClientSwap_) return;
    nextClientSwap_ = time + SecondsBetweenClientSwaps;
    SwapClient();
}

void ReadyWork::FollowSelfUpdate(Platform::NativeWindow* window) {
    if (selfUpdateDone_) return;
    const SelfUpdateOutcome outcome = g_selfUpdate.Outcome();
    if (outcome == SelfUpdateOutcome::Staged) return SwapLauncher(window);
    const char* telling = Telling(outcome);
    if (!telling) return;
    selfUpdateDone_ = true;
    BootLog(telling + Platform::Utf8FromWide(g_selfUpdate.Detail()));
}

void ReadyWork::SwapLauncher(Platform::NativeWindow* window) {
    // Whatever is on ends first.
    if (IsBeingReplaced() || IsSpawning() || IsMaintaining()) return;
    selfUpdateDone_ = true;
    BootLog("selfupdate: staged -> swapping and relaunching");
    std::optional<WindowPosition> position;
    // A minimised window stands outside of every screen.
    if (window && !window->IsMinimized()) {
        const Platform::Rect frame = window->GetFrameRect();
        position = WindowPosition{frame.left, frame.top};
    }
    if (g_selfUpdate.Apply(g_standDown.Event(), position)) {
        g_standDown.Begin();
    } else {
        BootLog("selfupdate: swap FAILED, continuing on the current binary");
    }
}

void ReadyWork::SwapClient() {
    if (IsBeingReplaced() || IsMaintaining()) return;
    if (g_clientUpdate.Swap() != ClientSwap::Deferred || clientWaitLogged_) return;
    clientWaitLogged_ = true;
    BootLog("clientupdate: a client update is waiting for a launch with no game running");
}

}  // namespace Launcher
