#pragma once

#include <cstdint>

/// Time and threads. Any thread.
namespace Platform {

/// Milliseconds since the machine started; never runs backwards.
std::uint64_t TickMilliseconds();
/// Seconds of the same kind of clock with its full resolution.
double MonotonicSeconds();
/// The system time in seconds since 1601-01-01 UTC, from its 100-nanosecond ticks. It can be set.
double SystemSeconds();

struct LocalDate {
    int year = 0;
    int month = 0;  ///< 1 to 12
    int day = 0;    ///< 1 to 31
};
LocalDate GetLocalDate();

void SleepMilliseconds(std::uint32_t milliseconds);

/// The id that the system and its debuggers show for the calling thread.
std::uint32_t CurrentThreadId();

}  // namespace Platform
