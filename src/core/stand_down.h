#pragma once

#include <cstdint>
#include <optional>

#include "update/stand_down.h"

namespace Launcher {

/// This process has started one that takes its place, and goes when that one's window is up, or
/// after six seconds. Main thread.
class StandDown {
public:
    /// To be created before the replacement is started.
    StandDownEvent& Event() { return event_; }

    /// The replacement has been started.
    void Begin();
    /// From Begin on, to the end of the process.
    bool IsUnderWay() const { return deadlineTick_.has_value(); }

    enum class Answer { Pending, ReplacementIsUp, TimedOut };
    Answer Look();

private:
    StandDownEvent event_;
    std::optional<std::uint64_t> deadlineTick_;
};

}  // namespace Launcher
