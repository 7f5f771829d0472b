#include "platform/executable_image.h"
#include "platform/files.h"

namespace Platform {

ImageReader ReadFrom(File& file) {
    return [&file](std::uint64_t offset, std::span<std::byte> buffer) {
        std::size_t total = 0;
        while (total < buffer.size()) {
            std::size_t got = 0;
            const Error error = file.ReadAt(offset + total, buffer.subspan(total), got);
            if (!Succeeded(error) || got == 0) break;
            total += got;
        }
        return total;
    };
}

}  // namespace Platform
