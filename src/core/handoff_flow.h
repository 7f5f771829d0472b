#pragma once

#include <functional>
#include <string>

#include "update/handoff.h"

/// The original's side of a handoff: a copy of this program is made and started beside the state
/// loop, and this process stands down once the copy is up. Main thread.
namespace Launcher {

/// Begins to hand over; nothing when this process is on its way out already. onFailure is told the
/// reason in words, on this thread, when no copy could be started.
void BeginHandoff(const HandoffRequest& request,
                  std::function<void(const std::wstring& reason)> onFailure);

/// Looks how it goes. Every tick.
void FollowHandoff();

/// The copy is being made.
bool IsHandingOff();

/// Waits for a copy that is being made: the teardown.
void StopHandoff();

}  // namespace Launcher
