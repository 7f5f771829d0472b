#include "core/install_flow.h"

#include "common/boot_log.h"
#include "core/globals.h"
#include "core/run.h"
#include "install/settings_store.h"

namespace Launcher {

namespace {

bool g_isFollowed = false;

bool IsInhibited(bool noPatch) {
    if (noPatch) BootLog("setup: install requested -- INHIBITED by --nopatch");
    return noPatch;
}

}  // namespace

void BeginInstall(const InstallOptions& options, bool noPatch) {
    g_installDir = options.path;
    ConfigurePatch();
    SetLastInstallPath(options.path);
    g_installEngine.ConfigureInstall(options);
    if (IsInhibited(noPatch)) return;
    BootLog("setup: install starting");
    g_installEngine.StartInstall();
    g_isFollowed = true;
}

void RetryInstall(bool noPatch) {
    if (IsInhibited(noPatch)) return;
    g_installEngine.RetryInstall();
    g_isFollowed = true;
}

void FollowInstall() {
    if (!g_isFollowed) return;
    const InstallProgress progress = g_installEngine.GetProgress();
    if (progress.running) return;
    g_isFollowed = false;
    if (progress.done) BootLog("install: finished -> receipt");
}

}  // namespace Launcher
