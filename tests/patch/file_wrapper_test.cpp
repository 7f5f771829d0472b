#include "patch/file_wrapper.h"

#include <gtest/gtest.h>
#include <limits>

namespace Launcher {
namespace {

TEST(FileWrapper, IsRecognisedOnlyWhenMagicAndSizesFit) {
    constexpr std::uint64_t largest = std::numeric_limits<std::uint64_t>::max();
    const struct {
        std::uint64_t payloadSize;
        std::uint64_t fileSize;
        bool wrapped;
    } cases[] = {
        {0, 20, true},
        {1, 21, true},
        {0, 19, false},
        {0, 21, false},
        {1, 20, false},
        {0xFFFF'FFFF, 0x1'0000'0013, true},
        {0xFFFF'FFFF, 0x13, false},  // only equal modulo 2^32
        {largest - 19, 0, false},    // only equal modulo 2^64
        {largest - 3, 16, false},
        {largest - 20, largest, true},
        {largest, largest, false},
    };
    for (const auto& [payloadSize, fileSize, wrapped] : cases) {
        const auto found = WrappedPayloadSize(MakeWrapperHeader(payloadSize), fileSize);
        EXPECT_EQ(found.has_value(), wrapped) << payloadSize << " in " << fileSize;
        EXPECT_EQ(found.value_or(payloadSize), payloadSize);
    }
}

TEST(FileWrapper, LiesInTheFileAsDocumented) {
    WrapperHeader header = MakeWrapperHeader(0x0807060504030201);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(static_cast<char>(header[i]), "TPK1"[i]);
        EXPECT_EQ(header[4 + i], std::byte{0});
    }
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(header[8 + i], static_cast<std::byte>(i + 1));

    header[5] = std::byte{0x77};
    EXPECT_TRUE(WrappedPayloadSize(header, 0x0807060504030201 + 20)) << "these bytes are not read";
    header[3] = std::byte{'2'};
    EXPECT_FALSE(WrappedPayloadSize(header, 0x0807060504030201 + 20));

    const WrapperTrailer trailer = MakeWrapperTrailer(0xCBF43926);
    EXPECT_EQ(trailer.front(), std::byte{0x26});
    EXPECT_EQ(trailer.back(), std::byte{0xCB});
    EXPECT_EQ(StoredCrc(trailer), 0xCBF43926U);
}

}  // namespace
}  // namespace Launcher
