#include "patch/crc32.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace Launcher {
namespace {

/// The definition, bit by bit: nothing of the code under test.
std::uint32_t BitwiseCrc(std::uint32_t running, std::span<const std::byte> bytes) {
    for (const std::byte byte : bytes) {
        running ^= std::to_integer<std::uint32_t>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            running = (running & 1) != 0 ? (running >> 1) ^ 0xEDB88320 : running >> 1;
        }
    }
    return running;
}

std::vector<std::byte> RandomBytes(std::size_t count, std::mt19937& random) {
    std::vector<std::byte> bytes(count);
    for (std::byte& byte : bytes)
        byte = static_cast<std::byte>(random());
    return bytes;
}

TEST(Crc32, EveryMethodAgreesWithTheDefinition) {
    std::mt19937 random(1);
    const auto bytes = RandomBytes(2100, random);
    for (const Crc32Method& method : Crc32Methods()) {
        if (!method.isSupported()) {
            std::printf("not supported here: %s\n", method.name);
            continue;
        }
        for (std::size_t length = 0; length <= 2000; ++length) {
            const auto piece = std::span(bytes).subspan(length % 67, length);
            const auto start = static_cast<std::uint32_t>(random());
            ASSERT_EQ(method.advance(start, piece), BitwiseCrc(start, piece))
                << method.name << ", length " << length;
        }
    }
}

TEST(Crc32, PiecesGiveTheSameAsTheWhole) {
    std::mt19937 random(2);
    const auto bytes = RandomBytes(300'000, random);
    const std::uint32_t expected = ~BitwiseCrc(0xFFFFFFFF, bytes);
    EXPECT_EQ(Crc32Of(bytes), expected);
    for (int round = 0; round < 50; ++round) {
        const std::size_t longest = std::size_t{1} << (random() % 18);
        Crc32 crc;
        for (std::span<const std::byte> rest = bytes; !rest.empty();) {
            const std::size_t length = std::min(rest.size(), random() % (longest + 1));
            crc.Update(rest.first(length));
            rest = rest.subspan(length);
        }
        ASSERT_EQ(crc.Value(), expected) << "pieces up to " << longest;
    }
}

}  // namespace
}  // namespace Launcher
