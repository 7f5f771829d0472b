#pragma once

#include <cstdint>

/// When the timed actions of the state loop are due. Pure.
namespace Launcher {

/// A job that runs every so many seconds, for the first time that long after it was first asked.
class Periodic {
public:
    explicit Periodic(double seconds) : seconds_(seconds) {}

    /// True when the job is to run now; the next one counts from here.
    bool IsDue(double time);

private:
    double seconds_;
    double last_ = 0.0;  // 0 while unset
};

/// How the wait for the first finished frame stands.
enum class Reveal { Pending, Composited, TimedOut };

/// baseline is the time of the last frame when the wait began, lastFrame the one now.
Reveal LookAtReveal(double baseline, double lastFrame, std::uint64_t waitedMilliseconds);

}  // namespace Launcher
