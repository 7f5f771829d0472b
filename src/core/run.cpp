#include "core/run.h"

#include "common/boot_log.h"
#include "common/deployment.h"
#include "core/globals.h"
#include "core/handoff_flow.h"
#include "install/settings_store.h"
#include "platform/text.h"
#include "update/launcher_swap.h"

namespace Launcher {

namespace {

void BeginPass(bool repair) {
    g_patch.Begin(repair);
    // A pass that was refused leaves the run where it is.
    if (g_patch.Progress().state == State::Manifest) g_state = State::Manifest;
}

void StartClientUpdate(bool checkOnly) {
    g_clientUpdate.Start(Deployment::PatchUrl(), g_installDir, LoadSettings().clientArch,
                         checkOnly);
}

}  // namespace

void ConfigurePatch() {
    g_patch.Configure(Platform::Utf8FromWide(Deployment::PatchUrl()), g_installDir);
}

void StartRun(bool checkOnly) {
    BootLog("run: starting the patch pass and the two update checks");
    BeginPass(false);
    DeleteSelfUpdateLeftovers();
    g_selfUpdate.Start(checkOnly);
    StartClientUpdate(checkOnly);
}

void RetryRun(bool repair, bool checkOnly) {
    BootLog(repair ? "terminal: REPAIR requested" : "terminal: RETRY requested");
    if (repair && !MayRepair("terminal: repair")) return;
    g_statusMessage.clear();
    BeginPass(repair);
    StartClientUpdate(checkOnly);
}

bool IsBeingReplaced() {
    return g_standDown.IsUnderWay() || IsHandingOff();
}

bool MayRepair(const char* name) {
    const char* reason = nullptr;
    if (IsPatching(g_state)) {
        reason = "a patch run is in flight";
    } else if (g_clientCount > 0) {
        reason = "a client is running";
    } else if (IsBeingReplaced()) {
        reason = "this launcher is being replaced";
    }
    if (reason) BootLogF("%s refused -- %s", name, reason);
    return reason == nullptr;
}

bool MayMaintain(const char* name) {
    if (!MayRepair(name)) return false;
    if (g_clientUpdate.Outcome() != ClientUpdateOutcome::Running) return true;
    BootLogF("%s refused -- the client is being updated", name);
    return false;
}

}  // namespace Launcher
