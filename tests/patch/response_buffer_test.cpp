#include "patch/response_buffer.h"

#include <gtest/gtest.h>

namespace {

using tolvanweb::GrownCapacity;

TEST(ResponseBuffer, StaysWithin32Bits) {
    constexpr std::uint64_t gibibyte = 1ull << 30;
    EXPECT_EQ(GrownCapacity(1024, 1024), 1024u);
    EXPECT_EQ(GrownCapacity(1024, 1025), 2048u);
    EXPECT_EQ(GrownCapacity(0, 1), 1024u);
    EXPECT_EQ(GrownCapacity(1024, gibibyte + 1), 2 * gibibyte);
    EXPECT_EQ(GrownCapacity(1024, 2 * gibibyte), 2 * gibibyte);
    EXPECT_EQ(GrownCapacity(1024, 2 * gibibyte + 1), std::nullopt);
    EXPECT_EQ(GrownCapacity(2u << 30, 4 * gibibyte), std::nullopt);
}

}  // namespace
