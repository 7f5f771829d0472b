#include "core/take_over.h"

#include "common/boot_log.h"
#include "core/move_flow.h"
#include "core/uninstall_flow.h"
#include "platform/clock.h"
#include "update/handoff.h"

namespace Launcher {

namespace {

constexpr std::uint64_t SettleMilliseconds = 250;

}  // namespace

void TakeOver::Arm(const HandoffArgs& handoff) {
    // Whoever is given these switches and is no copy stands in the folder's way himself.
    if (wasArmed_ || handoff.op == HandoffOperation::None || !IsHandoffCopy()) return;
    // A move to nowhere is for the player to complete.
    if (handoff.op == HandoffOperation::Move && handoff.dest.empty()) return;
    wasArmed_ = true;
    handoff_ = handoff;
    BootLog(handoff.op == HandoffOperation::Move
                ? "move: copy taking over -- armed, waiting for the original to let go"
                : "uninstall: copy taking over -- armed, waiting for the original to let go");
}

void TakeOver::Settle(Wait wait) {
    if (!IsArmed() || settleTick_) return;
    BootLog(wait == Wait::Gone
                ? "handoff: the original has gone -- settling before we touch the tree"
                : "handoff: the original outstayed the ceiling -- going ahead regardless");
    settleTick_ = Platform::TickMilliseconds();
}

void TakeOver::Step() {
    if (!IsArmed() || !settleTick_) return;
    if (Platform::TickMilliseconds() - *settleTick_ < SettleMilliseconds) return;
    const HandoffArgs handoff = *handoff_;
    handoff_.reset();
    if (handoff.op == HandoffOperation::Move) {
        BootLog("move: the tree is ours -- continuing the move");
        ContinueMove(handoff);
    } else {
        BootLog("uninstall: the tree is ours -- starting the removal");
        BeginUninstall(handoff.target, handoff.keepSettings, {handoff.x, handoff.y});
    }
}

}  // namespace Launcher
