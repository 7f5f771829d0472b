#pragma once

/// PLAY: starts the game client, and watches it until PLAY may be pressed again. Main thread.
namespace Launcher {

/// The action behind PLAY. True when a client was started; otherwise g_statusMessage or the log
/// says why not.
bool StartClient();

/// Looks at the client that is being started, if there is one.
void WatchSpawn();

/// The client is being started.
bool IsSpawning();

/// PLAY waits: for the client that is being started, or for one that is being updated.
bool IsPlayBusy();

}  // namespace Launcher
