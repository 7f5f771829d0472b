#include "common/state.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace Launcher {
namespace {

TEST(State, HasTheNamesThatTheLogShows) {
    // A few fixed points of the numbering pin the whole row down.
    constexpr struct {
        int value;
        std::string_view name;
    } Cases[] = {
        {0, "Boot"},        {3, "FirstRunLanguage"},
        {12, "Manifest"},   {17, "Update"},
        {19, "Ready"},      {27, "AutoDetect"},
        {28, "<unknown>"},  {29, "Move"},
        {35, "ErrNetwork"}, {40, "Halt"},
        {41, "Exit"},       {42, "<unknown>"},
        {-1, "<unknown>"},
    };
    for (const auto& entry : Cases) {
        EXPECT_EQ(StateName(static_cast<State>(entry.value)), entry.name) << entry.value;
    }
}

TEST(State, CountsFiveStatesAsAPatchPass) {
    std::string passes;
    for (int value = -1; value <= 42; ++value) {
        const auto state = static_cast<State>(value);
        if (IsPatching(state)) passes += StateName(state) + std::string(" ");
    }
    EXPECT_EQ(passes, "Manifest Parse Compare Update Verify ");
}

}  // namespace
}  // namespace Launcher
