#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "platform/geometry.h"

namespace Platform {

/// Pixels in memory: four bytes each in the order blue, green, red, alpha, the colours multiplied
/// by the alpha, rows of width * 4 bytes from top to bottom.
struct Image {
    Size size;
    std::vector<std::byte> pixels;

    bool IsEmpty() const { return pixels.empty(); }
    std::size_t Stride() const { return static_cast<std::size_t>(size.width) * 4; }
};

/// No side of a decoded or scaled image is longer.
inline constexpr int LargestImageSide = 8192;

/// Encoded images. PNG works everywhere; other formats where the system knows them. Input may be
/// hostile: whatever is not a whole image within the limit gives none. Any thread.
class ImageCodec {
public:
    virtual ~ImageCodec() = default;

    /// Reads the size without decoding the pixels.
    virtual std::optional<Size> ReadSize(std::span<const std::byte> encoded) = 0;
    /// The first frame.
    virtual std::optional<Image> Decode(std::span<const std::byte> encoded) = 0;
    /// A good filter, for results that are kept. None for an empty image or size.
    virtual std::optional<Image> Scale(const Image& image, Size size) = 0;
    /// Empty on failure.
    virtual std::vector<std::byte> EncodePng(const Image& image) = 0;
};

}  // namespace Platform
