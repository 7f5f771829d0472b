#include "core/stand_down.h"

#include "platform/clock.h"

namespace Launcher {

namespace {

constexpr std::uint64_t LongestMilliseconds = 6000;

}  // namespace

void StandDown::Begin() {
    deadlineTick_ = Platform::TickMilliseconds() + LongestMilliseconds;
}

StandDown::Answer StandDown::Look() {
    if (event_.HasReplacementSignalled()) return Answer::ReplacementIsUp;
    return Platform::TickMilliseconds() > *deadlineTick_ ? Answer::TimedOut : Answer::Pending;
}

}  // namespace Launcher
