#pragma once

#include <cstdint>
#include <string>

#include "core/command_line.h"

/// Which screen the launcher opens on, and whether it starts to patch.
namespace Launcher {

enum class InstallRoute : std::int32_t {
    Fresh = 0,      ///< nothing is registered: the install flow
    Installed = 1,  ///< patch and play
    Broken = 2,     ///< registered, but no client lies there: search and relink
};

/// What registry and disk say about the installation.
struct InstallProbe {
    std::wstring path;  ///< as the registry gives it
    bool hasKey = false;
    bool hasDir = false;
    bool hasClient = false;
    std::int32_t language = -1;  ///< as the registry gives it; -1 when absent
    InstallRoute route = InstallRoute::Fresh;
};

InstallRoute ClassifyInstall(bool hasKey, bool hasClient);
InstallProbe ProbeInstall();

/// What decides about the opening page, in the order of precedence.
enum class RouteSource { Handoff, UninstallSwitch, PageSwitch, Installation };
RouteSource ChooseRouteSource(const Switches& switches, const HandoffArgs& handoff);

/// What becomes of the patch run of an installed game.
enum class RunStart {
    Inhibited,
    Held,  ///< until the window that this one replaces has gone
    Now,
};
RunStart DecideRunStart(const Switches& switches, const HandoffArgs& handoff);

/// Sets g_installDir, g_openingPage and g_state, and starts the run unless it is to wait. Returns
/// what became of the run; Inhibited also where no game is installed. Main thread, with the lock.
RunStart TakeRoute(const Switches& switches, const HandoffArgs& handoff);

}  // namespace Launcher
