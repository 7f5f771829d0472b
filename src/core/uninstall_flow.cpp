#include "core/uninstall_flow.h"

#include "common/boot_log.h"
#include "core/globals.h"
#include "core/handoff_flow.h"
#include "install/files_in_use.h"
#include "install/game_client.h"
#include "install/settings_store.h"
#include "platform/text.h"
#include "update/removal_note.h"

namespace Launcher {

namespace {

std::wstring g_notice;
bool g_isFollowed = false;

void Tell(std::wstring notice) {
    g_notice = std::move(notice);
    BootLog("uninstall: told -- " + Platform::Utf8FromWide(g_notice));
}

void TellHandoffFailed(const std::wstring& reason) {
    BootLog("uninstall: handoff FAILED, refusing to remove from inside the folder");
    Tell(reason.empty()
             ? L"Setup could not prepare the removal. Nothing has been deleted."
             : L"Setup could not prepare the removal: " + reason + L". Nothing has been deleted.");
}

/// A running program's file can be opened for deletion, so the clients are asked for as well.
bool IsTargetFree(const std::wstring& target) {
    const bool clientRuns = CountRunningClients(target) > 0;
    std::wstring path;
    if (!clientRuns && FindFileInUse(target, path)) return true;
    BootLog("uninstall: refused -- a file in the install folder is in use");
    Tell(clientRuns ? L"Tolvan Online is still running. Close the game and try again. Nothing has "
                      L"been deleted."
                    : L"A file in the game folder is in use, so it cannot be removed yet. Close "
                      L"anything using it and try again.");
    return false;
}

}  // namespace

std::wstring UninstallTarget() {
    if (g_handoffArgs.op == HandoffOperation::Uninstall && IsHandoffCopy()) {
        return g_handoffArgs.target;
    }
    std::wstring registered = GetInstallLocation();
    if (!registered.empty()) return registered;
    return FindClient(g_installDir).empty() ? std::wstring() : g_installDir;
}

void BeginUninstall(const std::wstring& target, bool keepSettings, WindowPosition position) {
    if (g_installEngine.GetProgress().running) return;
    g_notice.clear();
    if (!IsHandoffCopy()) {
        BootLog("uninstall: handing off to a copy outside the install folder");
        HandoffRequest request;
        request.op = HandoffOperation::Uninstall;
        request.target = target;
        request.keepSettings = keepSettings;
        request.position = position;
        return BeginHandoff(request, TellHandoffFailed);
    }
    if (target.empty()) {
        return Tell(L"Setup could not prepare the removal. Nothing has been deleted.");
    }
    if (!IsTargetFree(target)) return;
    NoteRemoval(target);
    g_installEngine.ConfigureUninstall(target, keepSettings);
    g_installEngine.StartUninstall();
    g_isFollowed = true;
}

void FollowUninstall() {
    if (!g_isFollowed) return;
    const InstallProgress progress = g_installEngine.GetProgress();
    if (progress.running) return;
    g_isFollowed = false;
    DropRemovalNote();
    // What the copy was told is done; a game that it installs now is another one.
    if (progress.done) g_handoffArgs.op = HandoffOperation::None;
    BootLog(progress.done ? "uninstall: finished -> receipt"
                          : "uninstall: FAILED -- " + Platform::Utf8FromWide(progress.error));
}

const std::wstring& UninstallNotice() {
    return g_notice;
}

}  // namespace Launcher
