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

}  // namespace
}  // namespace Launcher
