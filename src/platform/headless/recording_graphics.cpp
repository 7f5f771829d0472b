#include "platform/headless/recording_graphics.h"

#include <algorithm>
#include <cstring>

#include "platform/headless/recording_target.h"

namespace Platform {

namespace {

constexpr char Magic[4] = {'R', 'A', 'W', 'I'};

struct Header {
    char magic[4];
    std::int32_t width;
    std::int32_t height;
};

}  // namespace

std::optional<Size> RecordingCodec::ReadSize(std::span<const std::byte> encoded) {
    Header header{};
    if (encoded.size() < sizeof header) return std::nullopt;
    std::memcpy(&header, encoded.data(), sizeof header);
    const bool whole = std::memcmp(header.magic, Magic, sizeof Magic) == 0 && header.width > 0 &&
                       header.height > 0 && header.width <= LargestImageSide &&
                       header.height <= LargestImageSide;
    if (!whole) return std::nullopt;
    return Size{header.width, header.height};
}

std::optional<Image> RecordingCodec::Decode(std::span<const std::byte> encoded) {
    const std::optional<Size> size = ReadSize(encoded);
    if (!size) return std::nullopt;
    Image image{*size, {}};
    const std::size_t bytes = image.Stride() * static_cast<std::size_t>(size->height);
    if (encoded.size() != sizeof(Header) + bytes) return std::nullopt;
    image.pixels.assign(encoded.begin() + sizeof(Header), encoded.end());
    return image;
}

std::optional<Image> RecordingCodec::Scale(const Image& image, Size size) {
    if (image.IsEmpty() || size.width < 1 || size.height < 1) return std::nullopt;
    Image scaled{size, {}};
    scaled.pixels.resize(scaled.Stride() * static_cast<std::size_t>(size.height));
    for (int y = 0; y < size.height; ++y) {
        const std::size_t fromY = static_cast<std::size_t>(y * image.size.height / size.height);
        for (int x = 0; x < size.width; ++x) {
            const std::size_t fromX = static_cast<std::size_t>(x * image.size.width / size.width);
            const auto* from = image.pixels.data() + fromY * image.Stride() + fromX * 4;
            auto* to = scaled.pixels.data() + static_cast<std::size_t>(y) * scaled.Stride() +
                       static_cast<std::size_t>(x) * 4;
            std::copy_n(from, 4, to);
        }
    }
    return scaled;
}

std::vector<std::byte> RecordingCodec::EncodePng(const Image& image) {
    Header header{{}, image.size.width, image.size.height};
    std::memcpy(header.magic, Magic, sizeof Magic);
    const auto* first = reinterpret_cast<const std::byte*>(&header);
    std::vector<std::byte> encoded(first, first + sizeof header);
    encoded.insert(encoded.end(), image.pixels.begin(), image.pixels.end());
    return encoded;
}

Created<DrawTarget> RecordingGraphics::CreateOffscreenTarget(Size size) {
    return std::make_unique<RecordingTarget>(*this, size);
}

}  // namespace Platform
