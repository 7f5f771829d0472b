#include "platform/system_time_source.h"

#include "platform/clock.h"

namespace Platform {

namespace {

constexpr double From1601To1970 = 11'644'473'600.0;

}  // namespace

// Less the monotonic time now, so that adding the monotonic time later gives the epoch.
SystemTimeSource::SystemTimeSource()
    : epochAtStart_(SystemSeconds() - From1601To1970 - MonotonicSeconds()) {}

double SystemTimeSource::Seconds() {
    return epochAtStart_ + MonotonicSeconds();
}

void SystemTimeSource::Sleep(std::uint32_t milliseconds) {
    SleepMilliseconds(milliseconds);
}

}  // namespace Platform
