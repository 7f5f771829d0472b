#include "core/timing.h"

namespace Launcher {

namespace {

constexpr std::uint64_t LongestRevealMilliseconds = 251;

}  // namespace

bool Periodic::IsDue(double time) {
    if (last_ == 0.0) last_ = time;
    if (time - last_ < seconds_) return false;
    last_ = time;
    return true;
}

Reveal LookAtReveal(double baseline, double lastFrame, std::uint64_t waitedMilliseconds) {
    if (lastFrame > baseline) return Reveal::Composited;
    return waitedMilliseconds >= LongestRevealMilliseconds ? Reveal::TimedOut : Reveal::Pending;
}

}  // namespace Launcher
