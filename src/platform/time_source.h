#pragma once

#include <cstdint>

namespace Platform {

/// The toolkit's clock and its pauses, so that a test can hold both. Any thread.
class TimeSource {
public:
    virtual ~TimeSource() = default;

    /// Seconds since the Unix epoch: the system's time at the start of the program plus the
    /// monotonic time since, so that it never runs backwards.
    virtual double Seconds() = 0;
    virtual void Sleep(std::uint32_t milliseconds) = 0;
    /// Raises the resolution of Sleep to 1 ms, or gives it back; calls come in pairs.
    virtual void SetFineSleep(bool fine) = 0;
};

}  // namespace Platform
