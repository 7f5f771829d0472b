#include "core/timing.h"

#include <gtest/gtest.h>

namespace Launcher {
namespace {

TEST(Periodic, RunsEverySoManySecondsFromTheFirstLook) {
    Periodic job(2.0);
    constexpr struct {
        double time;
        bool due;
    } Looks[] = {
        {100.0, false}, {101.9, false}, {102.0, true},  {102.1, false},
        {103.9, false}, {107.0, true},  {108.9, false}, {109.0, true},
    };
    for (const auto& look : Looks)
        EXPECT_EQ(job.IsDue(look.time), look.due) << look.time;
}

TEST(Reveal, ComesWithTheFirstNewFrameOrAfterAQuarterOfASecond) {
    EXPECT_EQ(LookAtReveal(0.0, 0.0, 0), Reveal::Pending);
    EXPECT_EQ(LookAtReveal(0.0, 0.0, 250), Reveal::Pending);
    EXPECT_EQ(LookAtReveal(0.0, 0.0, 251), Reveal::TimedOut);
    EXPECT_EQ(LookAtReveal(5.0, 5.0, 250), Reveal::Pending);
    EXPECT_EQ(LookAtReveal(5.0, 5.016, 16), Reveal::Composited);
    EXPECT_EQ(LookAtReveal(5.0, 5.016, 300), Reveal::Composited);
}

}  // namespace
}  // namespace Launcher
