#include "platform/clock.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace Platform {
namespace {

TEST(Clock, SleepTakesItsTimeOnEveryClock) {
    const std::uint64_t ticks = TickMilliseconds();
    const double monotonic = MonotonicSeconds();
    const double system = SystemSeconds();
    SleepMilliseconds(60);
    // The tick counts in steps of up to 16 ms, and so may the sleep.
    EXPECT_GE(TickMilliseconds() - ticks, 44u);
    EXPECT_GE(MonotonicSeconds() - monotonic, 0.044);
    EXPECT_GE(SystemSeconds() - system, 0.044);
    EXPECT_LT(MonotonicSeconds() - monotonic, 30.0);
}

TEST(Clock, SystemSecondsCountFrom1601) {
    const auto unix =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_NEAR(SystemSeconds() - unix, 11'644'473'600.0, 2.0);
    const LocalDate date = GetLocalDate();
    EXPECT_GE(date.year, 2024);
    EXPECT_TRUE(date.month >= 1 && date.month <= 12);
    EXPECT_TRUE(date.day >= 1 && date.day <= 31);
}

TEST(Clock, ThreadsDifferInTheirIds) {
    const std::uint32_t own = CurrentThreadId();
    std::uint32_t other = 0;
    std::thread([&] { other = CurrentThreadId(); }).join();
    EXPECT_NE(own, other);
    EXPECT_EQ(own, CurrentThreadId());
}

}  // namespace
}  // namespace Platform
