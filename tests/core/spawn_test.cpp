#include "core/spawn.h"

#include <gtest/gtest.h>

namespace Launcher {
namespace {

struct Look {
    std::uint64_t at;  ///< milliseconds since the press
    ReadyState ready;
    bool hasEnded;
    bool showsIdleWindow;
    const char* released;  ///< a part of the reason; null while PLAY waits
};

TEST(SpawnWatch, ReleasesPlayBySignalsAndTheirTimeLimits) {
    using enum ReadyState;
    const std::vector<std::vector<Look>> Ladders = {
        {{0, NoHandshake, false, false, nullptr}, {50, Set, false, false, "login screen"}},
        // One that handshakes is waited for whatever else it shows, up to the ceiling.
        {{20'000, Unset, true, true, nullptr},
         {90'000, Unset, false, false, nullptr},
         {90'001, Unset, false, false, "in time"}},
        {{400, NoHandshake, true, false, "exited"}},
        {{9'999, NoHandshake, false, true, nullptr},
         // Looked at once in 400 milliseconds.
         {10'398, NoHandshake, true, true, nullptr},
         {10'399, NoHandshake, false, true, "heuristic"}},
        {{90'000, NoHandshake, false, false, nullptr},
         {90'001, NoHandshake, false, false, "in time"}},
    };
    for (const auto& ladder : Ladders) {
        SpawnWatch watch;
        constexpr std::uint64_t Press = 1'000'000;
        watch.Begin(Press);
        watch.SetProcess(42);
        for (const Look& look : ladder) {
            const auto reason = watch.Look(
                Press + look.at, {.ready = [&] { return look.ready; },
                                  .hasEnded = [&] { return look.hasEnded; },
                                  .showsIdleWindow = [&] { return look.showsIdleWindow; }});
            ASSERT_EQ(reason.has_value(), look.released != nullptr) << look.at;
            if (reason) {
                EXPECT_NE(std::string(*reason).find(look.released), std::string::npos);
            }
            EXPECT_EQ(watch.IsInFlight(), !reason) << look.at;
        }
    }
}

}  // namespace
}  // namespace Launcher
