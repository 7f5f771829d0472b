#pragma once

/// The patch pass of the installed game with the two update checks beside it, and what may not
/// happen while one or the other is on. Main thread.
namespace Launcher {

/// Tells the pipeline the patch host and the game's folder.
void ConfigurePatch();

/// Begins a normal pass and the checks. With checkOnly nothing is fetched.
void StartRun(bool checkOnly);

/// The button of a terminal state: begins again, with a full check when repair is set.
void RetryRun(bool repair, bool checkOnly);

/// Another process is taking this one's place, or is being made for that: nothing new may begin.
bool IsBeingReplaced();

/// Whether a repair, named for the log, may begin: not during a patch pass, not while a client runs
/// and not while this process is being replaced.
[[nodiscard]] bool MayRepair(const char* name);

/// Whether an action that takes the game's folder away, named for the log, may begin: not while the
/// client is being updated, either.
[[nodiscard]] bool MayMaintain(const char* name);

}  // namespace Launcher
