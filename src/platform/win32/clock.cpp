#include "platform/clock.h"

#include <windows.h>

namespace Platform {

namespace {

constexpr double TicksPerSecond = 10'000'000.0;

double CounterFrequency() {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(frequency.QuadPart);
}

}  // namespace

std::uint64_t TickMilliseconds() {
    return GetTickCount64();
}

double MonotonicSeconds() {
    static const double frequency = CounterFrequency();
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return static_cast<double>(count.QuadPart) / frequency;
}

double SystemSeconds() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const std::uint64_t ticks = (std::uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime;
    return static_cast<double>(ticks) / TicksPerSecond;
}

LocalDate GetLocalDate() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay};
}

void SleepMilliseconds(std::uint32_t milliseconds) {
    Sleep(milliseconds);
}

std::uint32_t CurrentThreadId() {
    return GetCurrentThreadId();
}

}  // namespace Platform
