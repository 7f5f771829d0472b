#include "patch/response_buffer.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

using tolvanweb::GrownCapacity;

TEST(ResponseBuffer, GrowsByDoublingAndNeverShrinks) {
    tolvanweb::ResponseBuffer buffer;
    EXPECT_EQ(buffer.Capacity(), 1024u);
    std::vector<std::byte> expected;
    for (int i = 0; i < 50; ++i) {
        const std::vector<std::byte> piece(100, static_cast<std::byte>(i));
        ASSERT_TRUE(buffer.Append(piece));
        expected.insert(expected.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(std::vector(buffer.Bytes().begin(), buffer.Bytes().end()), expected);
    EXPECT_EQ(buffer.Capacity(), 8192u);
    buffer.Clear();
    EXPECT_EQ(buffer.Size(), 0u);
    EXPECT_EQ(buffer.Capacity(), 8192u);
}

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
