#include "platform/clock.h"

#include <chrono>
#include <gtest/gtest.h>

namespace Platform {
namespace {

TEST(Clock, SystemSecondsCountFrom1601) {
    const auto unix =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_NEAR(SystemSeconds() - unix, 11'644'473'600.0, 2.0);
    const LocalDate date = GetLocalDate();
    EXPECT_GE(date.year, 2024);
    EXPECT_TRUE(date.month >= 1 && date.month <= 12);
    EXPECT_TRUE(date.day >= 1 && date.day <= 31);
}

}  // namespace
}  // namespace Platform
