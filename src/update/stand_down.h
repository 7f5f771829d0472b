#pragma once

#include <cstdint>
#include <string>

#include "platform/named_objects.h"

/// The event by which a process that takes another's place tells it that its own window is up.
namespace Launcher {

/// The replaced instance's side. Main thread.
class StandDownEvent {
public:
    /// Before the replacement is started. A second call keeps the event.
    void Create();
    /// True once the replacement has signalled, and when no event is held.
    bool HasReplacementSignalled();

private:
    Platform::NamedEvent event_;
};

/// The replacement's side: its window can be seen, the process may go.
void SignalOriginal(std::uint32_t processId);

}  // namespace Launcher
