#include "common/state.h"

#include <gtest/gtest.h>
#include <string>

namespace Launcher {
namespace {

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
