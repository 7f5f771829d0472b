#include "platform/executable_image.h"

#include <algorithm>

namespace Platform {

ImageReader ReadFrom(std::span<const std::byte> bytes) {
    return [bytes](std::uint64_t offset, std::span<std::byte> buffer) {
        if (offset >= bytes.size()) return std::size_t{0};
        const auto from = bytes.subspan(static_cast<std::size_t>(offset));
        const std::size_t count = std::min(buffer.size(), from.size());
        std::copy_n(from.begin(), count, buffer.begin());
        return count;
    };
}

}  // namespace Platform
