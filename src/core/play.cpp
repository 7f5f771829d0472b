#include "core/play.h"

#include "common/boot_log.h"
#include "core/client_launch.h"
#include "core/globals.h"
#include "core/run.h"
#include "core/spawn.h"
#include "install/game_client.h"
#include "install/settings_store.h"
#include "platform/clock.h"
#include "platform/processes.h"

namespace Launcher {

namespace {

SpawnWatch g_spawn;

/// A client is needed, and either on its way or not to be had.
bool RefuseWithoutClient() {
    // Whoever is offline keeps a game that works, even if it is not the one that is wanted.
    const bool failed = g_clientUpdate.HasFailedForPlay() && FindClient(g_installDir).empty();
    if (!failed && !g_clientUpdate.HoldsPlay()) return false;
    if (failed) {
        g_statusMessage =
            L"The game client could not be downloaded. Retry, or check your connection.";
    }
    BootLog("spawn: refused -- the correct client is not in place yet");
    return true;
}

}  // namespace

bool StartClient() {
    if (g_spawn.IsInFlight()) {
        BootLog("spawn: ignored -- a client is already starting");
        return false;
    }
    if (IsBeingReplaced()) {
        BootLog("spawn: refused -- this launcher is being replaced");
        return false;
    }
    if (RefuseWithoutClient()) return false;

    g_spawn.Begin(Platform::TickMilliseconds());
    LaunchResult result = LaunchClient(g_installDir);
    const bool started = result.status == LaunchStatus::Started;
    BootLogF("spawn: %s", started ? "started" : "FAILED");
    if (!started) {
        g_spawn.Release();
        g_statusMessage = std::move(result.text);
        return false;
    }
    g_spawn.SetProcess(result.pid);
    if (LoadSettings().closeAfterStart) {
        g_state = State::Halt;
    } else {
        BootLog("spawn: client started, staying open (CloseAfterStart is off)");
        g_statusMessage.clear();
    }
    return true;
}

void WatchSpawn() {
    const std::uint32_t client = g_spawn.ProcessId();
    const SpawnSignals signals{
        .ready = [client] { return GetReadyState(client); },
        .hasEnded = [client] { return Platform::HasProcessEnded(client); },
        .showsIdleWindow =
            [client] { return Platform::HasMainWindow(client) && Platform::IsProcessIdle(client); },
    };
    if (const auto reason = g_spawn.Look(Platform::TickMilliseconds(), signals)) BootLog(*reason);
}

bool IsSpawning() {
    return g_spawn.IsInFlight();
}

bool IsPlayBusy() {
    return IsSpawning() || g_clientUpdate.HoldsPlay();
}

}  // namespace Launcher
