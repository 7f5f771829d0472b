#include "platform/clock.h"

#include <cerrno>
#include <ctime>
#include <unistd.h>

namespace Platform {

namespace {

constexpr std::int64_t TicksPerSecond = 10'000'000;  // of 100 nanoseconds
constexpr std::int64_t SecondsFrom1601To1970 = 11'644'473'600;

timespec Now(clockid_t clock) {
    timespec now{};
    ::clock_gettime(clock, &now);
    return now;
}

}  // namespace

std::uint64_t TickMilliseconds() {
    const timespec now = Now(CLOCK_BOOTTIME);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
           static_cast<std::uint64_t>(now.tv_nsec) / 1'000'000;
}

double MonotonicSeconds() {
    const timespec now = Now(CLOCK_BOOTTIME);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

double SystemSeconds() {
    const timespec now = Now(CLOCK_REALTIME);
    const std::int64_t ticks =
        (now.tv_sec + SecondsFrom1601To1970) * TicksPerSecond + now.tv_nsec / 100;
    return static_cast<double>(ticks) / static_cast<double>(TicksPerSecond);
}

LocalDate GetLocalDate() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday};
}

void SleepMilliseconds(std::uint32_t milliseconds) {
    timespec rest{static_cast<std::time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1'000'000};
    while (::clock_nanosleep(CLOCK_MONOTONIC, 0, &rest, &rest) == EINTR) {
    }
}

std::uint32_t CurrentThreadId() {
    thread_local const auto id = static_cast<std::uint32_t>(::gettid());
    return id;
}

}  // namespace Platform
