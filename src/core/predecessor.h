#pragma once

#include <cstdint>

namespace Launcher {

/// How the wait for the replaced instance stands.
enum class Wait { Pending, Gone, Outstayed };

/// Waits until the process has ended, for 15 seconds at most. Pure.
Wait LookAtWait(bool processEnded, std::uint64_t waitedMilliseconds);

/// The instance that this one replaces, after a self-update or a handoff. Main thread.
class Predecessor {
public:
    /// The wait begins. Id 0 has gone already.
    void Await(std::uint32_t processId);
    bool IsAwaited() const { return awaited_; }

    /// Lets the predecessor go: this instance can be seen now. Any number of times.
    void Release() const;

    /// Ends the wait with the first answer other than Pending.
    Wait Look();

private:
    std::uint32_t processId_ = 0;
    std::uint64_t sinceTick_ = 0;
    bool awaited_ = false;
};

}  // namespace Launcher
