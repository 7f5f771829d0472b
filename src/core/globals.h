#pragma once

#include <cstddef>
#include <string>

#include "common/state.h"
#include "core/command_line.h"
#include "core/stand_down.h"
#include "install/install_engine.h"
#include "patch/patch_pipeline.h"
#include "update/client_update.h"
#include "update/self_update.h"

/// The single instances of the whole program. Main thread only, unless one says otherwise.
namespace Launcher {

/// The run state. Pages come and go without changing it.
extern State g_state;
/// The page that the launcher opens on.
extern State g_openingPage;
/// What the home page shows in place of the run state; empty for nothing.
extern std::wstring g_statusMessage;

/// What the launcher that started this one told it.
extern HandoffArgs g_handoffArgs;

/// The folder of the running executable, without a trailing separator.
extern std::wstring g_ownDir;
/// The game's folder: the own one until the route knows better.
extern std::wstring g_installDir;

/// Brings the game up to date.
extern PatchPipeline g_patch;
/// Keep the two programs current beside it.
extern SelfUpdate g_selfUpdate;
extern ClientUpdate g_clientUpdate;
/// Puts the game on the machine.
extern InstallEngine g_installEngine;

/// How many game clients run from the game's folder, as last counted.
extern std::size_t g_clientCount;

/// Under way while another process takes this one's place.
extern StandDown g_standDown;

}  // namespace Launcher
