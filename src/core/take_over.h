#pragma once

#include <cstdint>
#include <optional>

#include "core/command_line.h"
#include "core/predecessor.h"

namespace Launcher {

/// A handoff copy's way to its work: it waits for the original to go, and then a little, so that
/// the system has let go of everything the original held. The work is begun once. Main thread.
class TakeOver {
public:
    /// The copy was started for this operation. Only the first call counts, and none in a process
    /// that is no copy.
    void Arm(const HandoffArgs& handoff);
    bool IsArmed() const { return handoff_.has_value(); }

    /// The wait for the original has ended so.
    void Settle(Wait wait);
    /// Begins the work when it is time for it.
    void Step();

private:
    std::optional<HandoffArgs> handoff_;
    std::optional<std::uint64_t> settleTick_;
    bool wasArmed_ = false;
};

}  // namespace Launcher
