#pragma once

#include <array>
#include <cstddef>

namespace Launcher {

/// The one buffer that a request reads into, block after block. Lives on the heap.
template <std::size_t Size>
struct alignas(32) ReadBlock {
    std::array<std::byte, Size> bytes{};
};

}  // namespace Launcher
