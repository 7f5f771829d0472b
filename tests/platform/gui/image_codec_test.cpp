#include "platform/image_codec.h"

#include <gtest/gtest.h>

#include "platform/desktop.h"
#include "platform/resources.h"

using namespace Platform;

namespace {

// Images that this test carries in its own resources.
constexpr std::uint16_t NoWidth = 301;
constexpr std::uint16_t TooWide = 302;

ImageCodec& Codec() {
    static const std::unique_ptr<Graphics> graphics = OpenGraphics();
    return graphics->GetImageCodec();
}

/// All colours and alphas, and no two rows alike.
Image MakeColorful(Size size) {
    Image image{size, {}};
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const int alpha = (x + y) % 9 * 255 / 8;
            const int parts[] = {(x * 7 + y * 13) % 16 * 17, y * 255 / size.height,
                                 x * 255 / size.width, 255};
            for (const int part : parts)
                image.pixels.push_back(static_cast<std::byte>(part * alpha / 255));
        }
    }
    return image;
}

}  // namespace

TEST(ImageCodec, EncodedImagesComeBack) {
    for (const Size size : {Size{1, 1}, Size{40, 3}, Size{257, 129}}) {
        const Image image = MakeColorful(size);
        const std::vector<std::byte> png = Codec().EncodePng(image);
        EXPECT_EQ(Codec().ReadSize(png), size);
        const auto decoded = Codec().Decode(png);
        ASSERT_TRUE(decoded);
        ASSERT_EQ(decoded->size, size);
        ASSERT_EQ(decoded->pixels.size(), image.pixels.size());
        for (std::size_t at = 0; at < image.pixels.size(); ++at)
            ASSERT_NEAR(std::to_integer<int>(decoded->pixels[at]),
                        std::to_integer<int>(image.pixels[at]), 1)
                << size.width << " wide, byte " << at;
    }
}

TEST(ImageCodec, WhatIsNoWholeImageWithinTheLimitGivesNone) {
    const std::vector<std::byte> png = Codec().EncodePng(MakeColorful({60, 50}));
    for (std::size_t size = 0; size + 16 < png.size(); size += 37) {
        const auto part = std::span(png).first(size);
        EXPECT_FALSE(Codec().Decode(part)) << size << " of " << png.size() << " bytes";
    }
    for (const std::uint16_t id : {NoWidth, TooWide}) {
        EXPECT_FALSE(Codec().ReadSize(FindOwnResource(id))) << id;
        EXPECT_FALSE(Codec().Decode(FindOwnResource(id))) << id;
    }
}
