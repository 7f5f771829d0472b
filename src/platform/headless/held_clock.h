#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/time_source.h"

namespace Platform {

/// A clock that stands still until it is told to move. A sleep on the thread that made it moves
/// the clock by as much; on every other thread it waits until the clock has passed its end.
class HeldClock final : public TimeSource {
public:
    explicit HeldClock(double start = 1'000'000.0) : now_(start) {}

    double Seconds() override;
    void Sleep(std::uint32_t milliseconds) override;
    void SetFineSleep(bool fine) override;

    void Advance(double seconds);
    /// From now on no sleep waits any more, so that threads can be joined.
    void Release();
    /// Waits until so many other threads are in a sleep.
    void WaitForSleepers(int count);
    /// Every sleep of another thread, in milliseconds, in the order they began.
    std::vector<std::uint32_t> Sleeps();
    /// How often SetFineSleep(true) is ahead of SetFineSleep(false).
    int FineDepth();

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    const std::thread::id owner_ = std::this_thread::get_id();
    double now_;
    bool released_ = false;
    int sleepers_ = 0;
    int fineDepth_ = 0;
    std::vector<std::uint32_t> sleeps_;
};

}  // namespace Platform
