#pragma once

#include "platform/image_codec.h"

namespace Platform::Host {

/// PNG by libpng, scaling by Cairo.
class PngCodec final : public ImageCodec {
public:
    std::optional<Size> ReadSize(std::span<const std::byte> encoded) override;
    std::optional<Image> Decode(std::span<const std::byte> encoded) override;
    std::optional<Image> Scale(const Image& image, Size size) override;
    std::vector<std::byte> EncodePng(const Image& image) override;
};

}  // namespace Platform::Host
