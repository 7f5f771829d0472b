#include "platform/image_codec.h"

#include <gtest/gtest.h>

#include "platform/gui/canvas.h"
#include "platform/resources.h"

using namespace Platform;
using namespace TestSupport;

namespace {

// Images that this test carries in its own resources.
constexpr std::uint16_t NoWidth = 301;
constexpr std::uint16_t TooWide = 302;

ImageCodec& Codec() {
    return SharedGraphics().GetImageCodec();
}

/// All colours and alphas, and no two rows alike.
Image MakeColorful(int width, int height) {
    return MakeImage(width, height, [&](int x, int y) {
        return Color{static_cast<float>(x) / static_cast<float>(width),
                     static_cast<float>(y) / static_cast<float>(height),
                     static_cast<float>((x * 7 + y * 13) % 16) / 15.0F,
                     static_cast<float>((x + y) % 9) / 8.0F};
    });
}

void ExpectAlike(const Image& image, const Image& other, int tolerance) {
    ASSERT_EQ(image.size, other.size);
    for (int y = 0; y < image.size.height; ++y)
        for (int x = 0; x < image.size.width; ++x)
            ASSERT_TRUE(Near(PixelAt(image, x, y), PixelAt(other, x, y), tolerance))
                << x << " " << y;
}

}  // namespace

TEST(ImageCodec, EncodedImagesComeBack) {
    for (const Size size : {Size{1, 1}, Size{40, 3}, Size{257, 129}}) {
        const Image image = MakeColorful(size.width, size.height);
        const std::vector<std::byte> png = Codec().EncodePng(image);
        ASSERT_FALSE(png.empty());
        EXPECT_EQ(Codec().ReadSize(png), size);
        const auto decoded = Codec().Decode(png);
        ASSERT_TRUE(decoded);
        ExpectAlike(*decoded, image, 1);
    }
    EXPECT_TRUE(Codec().EncodePng({}).empty());
}

TEST(ImageCodec, WhatIsNoWholeImageGivesNone) {
    const std::vector<std::byte> png = Codec().EncodePng(MakeColorful(60, 50));
    for (std::size_t size = 0; size + 16 < png.size(); size += 37) {
        const auto part = std::span(png).first(size);
        EXPECT_FALSE(Codec().Decode(part)) << size << " of " << png.size() << " bytes";
    }
}

TEST(ImageCodec, SizesBeyondTheLimitAreRefused) {
    for (const std::uint16_t id : {NoWidth, TooWide}) {
        EXPECT_FALSE(Codec().ReadSize(FindOwnResource(id))) << id;
        EXPECT_FALSE(Codec().Decode(FindOwnResource(id))) << id;
    }
    const Image image = MakeColorful(4, 4);
    for (const Size size : {Size{0, 4}, Size{4, -1}, Size{LargestImageSide + 1, 4}})
        EXPECT_FALSE(Codec().Scale(image, size));
    EXPECT_FALSE(Codec().Scale({}, {4, 4}));
}

TEST(ImageCodec, ScalingTakesAllPixelsIntoAccount) {
    // Single black pixels on white: whoever picks pixels sees all of one colour.
    const Image dots = MakeImage(64, 64, [](int x, int y) {
        return x % 2 == 0 && y % 2 == 0 ? Color{0.0F, 0.0F, 0.0F, 1.0F} : White;
    });
    const auto small = Codec().Scale(dots, {8, 8});
    ASSERT_TRUE(small);
    EXPECT_EQ(small->size, (Size{8, 8}));
    for (int at = 1; at < 7; ++at)
        EXPECT_TRUE(Near(PixelAt(*small, at, at), {191, 191, 191, 255}, 12)) << at;
    const Image half = MakeImage(40, 20, [](int x, int) { return x < 20 ? Red : Clear; });
    for (const Size size : {Size{13, 9}, Size{100, 80}}) {
        const auto scaled = Codec().Scale(half, size);
        ASSERT_TRUE(scaled);
        EXPECT_TRUE(Near(PixelAt(*scaled, 0, 0), PixelOf(Red)));
        EXPECT_TRUE(Near(PixelAt(*scaled, size.width - 1, size.height - 1), PixelOf(Clear)));
    }
}
