#include "core/route.h"

#include "common/boot_log.h"
#include "core/globals.h"
#include "core/run.h"
#include "install/game_client.h"
#include "install/settings_store.h"
#include "platform/files.h"

namespace Launcher {

namespace {

const char* RouteName(InstallRoute route) {
    switch (route) {
        case InstallRoute::Fresh:
            return "FRESH (install flow)";
        case InstallRoute::Installed:
            return "INSTALLED (patch + play)";
        case InstallRoute::Broken:
            return "BROKEN (search + relink)";
    }
    return "";
}

RunStart StartInstalledGame(const std::wstring& folder, RunStart start, bool checkOnly) {
    g_installDir = folder;
    g_openingPage = State::Ready;
    switch (start) {
        case RunStart::Inhibited:
            BootLog("route: installed, but --nopatch -- not starting the patch run");
            break;
        case RunStart::Held:
            BootLog(
                "route: installed, relaunched after a self-update -- holding the run until the old "
                "window has gone");
            ConfigurePatch();
            break;
        case RunStart::Now:
            ConfigurePatch();
            StartRun(checkOnly);
            break;
    }
    return start;
}

RunStart RouteByInstallation(const Switches& switches, const HandoffArgs& handoff) {
    const InstallProbe probe = ProbeInstall();
    BootLogF("route: hasKey=%d hasDir=%d hasClient=%d -> %s", probe.hasKey, probe.hasDir,
             probe.hasClient, RouteName(probe.route));
    switch (probe.route) {
        case InstallRoute::Fresh:
            g_openingPage = State::FirstRunLanguage;
            break;
        case InstallRoute::Broken:
            BootLog("route: registry points at a missing folder -> ManageBroken (search + relink)");
            g_openingPage = State::ManageBroken;
            break;
        case InstallRoute::Installed:
            return StartInstalledGame(probe.path, DecideRunStart(switches, handoff),
                                      switches.checkOnly);
    }
    return RunStart::Inhibited;
}

}  // namespace

InstallRoute ClassifyInstall(bool hasKey, bool hasClient) {
    if (!hasKey) return InstallRoute::Fresh;
    return hasClient ? InstallRoute::Installed : InstallRoute::Broken;
}

InstallProbe ProbeInstall() {
    InstallProbe probe;
    probe.path = GetInstallLocation();
    probe.hasKey = !probe.path.empty();
    probe.hasDir = probe.hasKey && Platform::IsExistingFolder(probe.path);
    probe.hasClient = probe.hasDir && !FindClient(probe.path).empty();
    probe.language = GetLanguage();
    probe.route = ClassifyInstall(probe.hasKey, probe.hasClient);
    return probe;
}

RouteSource ChooseRouteSource(const Switches& switches, const HandoffArgs& handoff) {
    if (handoff.op != HandoffOperation::None) return RouteSource::Handoff;
    if (switches.uninstall) return RouteSource::UninstallSwitch;
    if (switches.page) return RouteSource::PageSwitch;
    return RouteSource::Installation;
}

RunStart DecideRunStart(const Switches& switches, const HandoffArgs& handoff) {
    if (switches.noPatch) return RunStart::Inhibited;
    return handoff.IsPlainStart() ? RunStart::Now : RunStart::Held;
}

RunStart TakeRoute(const Switches& switches, const HandoffArgs& handoff) {
    g_state = State::Ready;
    switch (ChooseRouteSource(switches, handoff)) {
        case RouteSource::Handoff:
            BootLog("route: handoff copy -> show first, then outlive the original");
            g_installDir = handoff.target;
            g_openingPage =
                handoff.op == HandoffOperation::Move ? State::Move : State::UninstallConfirm;
            break;
        case RouteSource::UninstallSwitch:
            BootLog("route: --uninstall -> UninstallConfirm");
            g_openingPage = State::UninstallConfirm;
            break;
        case RouteSource::PageSwitch:
            BootLog("route: overridden by --page=");
            g_openingPage = *switches.page;
            break;
        case RouteSource::Installation:
            return RouteByInstallation(switches, handoff);
    }
    return RunStart::Inhibited;
}

}  // namespace Launcher
