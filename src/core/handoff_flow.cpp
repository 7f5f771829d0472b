#include "core/handoff_flow.h"

#include <utility>

#include "common/boot_log.h"
#include "common/worker.h"
#include "core/globals.h"
#include "core/run.h"

namespace Launcher {

namespace {

struct Handoff {
    std::wstring reason;  ///< the worker's until it has ended
    std::function<void(const std::wstring&)> onFailure;
    Worker worker;  ///< last, so that it ends before what it uses
};
Handoff g_handoff;

}  // namespace

void BeginHandoff(const HandoffRequest& request,
                  std::function<void(const std::wstring& reason)> onFailure) {
    if (IsBeingReplaced()) return;
    // Before the copy can look for it.
    g_standDown.Event().Create();
    g_handoff.onFailure = std::move(onFailure);
    g_handoff.worker.Start(
        [request](const std::stop_token&) { return SpawnHandoff(request, g_handoff.reason); });
}

void FollowHandoff() {
    const Worker::Status status = g_handoff.worker.Poll();
    if (status == Worker::Status::Idle || status == Worker::Status::Running) return;
    g_handoff.worker.Join();
    const auto onFailure = std::exchange(g_handoff.onFailure, nullptr);
    if (status == Worker::Status::Done) {
        BootLog("handoff: replacement started -- holding the window until it draws");
        g_standDown.Begin();
    } else if (onFailure) {
        onFailure(g_handoff.reason);
    }
}

bool IsHandingOff() {
    return g_handoff.worker.Poll() != Worker::Status::Idle;
}

void StopHandoff() {
    g_handoff.worker.Join();
}

}  // namespace Launcher
