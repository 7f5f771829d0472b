#include "platform/image_codec.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "platform/gui/canvas.h"

using namespace Platform;
using namespace TestSupport;

namespace {

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

/// Of all of them.
Pixel MeanOf(const Image& image) {
    double sum[4] = {};
    for (std::size_t at = 0; at < image.pixels.size(); ++at)
        sum[at % 4] += std::to_integer<int>(image.pixels[at]);
    const auto mean = [&](int part) {
        return static_cast<int>(
            std::lround(sum[part] * 4.0 / static_cast<double>(image.pixels.size())));
    };
    return {mean(2), mean(1), mean(0), mean(3)};
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
    std::mt19937 random(7);
    std::vector<std::byte> noise(5000);
    std::ranges::generate(noise, [&] { return static_cast<std::byte>(random()); });
    EXPECT_FALSE(Codec().Decode(noise));
    EXPECT_FALSE(Codec().ReadSize(noise));
}

TEST(ImageCodec, DamageEndsInNoneOrInAnImage) {
    const std::vector<std::byte> png = Codec().EncodePng(MakeColorful(60, 50));
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::byte> damaged = png;
        for (int count = 0; count < 1 + round % 5; ++count)
            damaged[random() % damaged.size()] = static_cast<std::byte>(random());
        const auto image = Codec().Decode(damaged);
        if (image) {
            ASSERT_EQ(image->pixels.size(), image->Stride() * image->size.height);
        }
    }
}

TEST(ImageCodec, SizesBeyondTheLimitAreRefused) {
    // The header of a PNG without its pixels; only then are sizes and checksum right.
    const auto header = [](std::uint32_t width, std::uint32_t height) {
        std::vector<std::uint8_t> bytes{0x89, 'P', 'N', 'G', 13,  10,  26,  10,
                                        0,    0,   0,   13,  'I', 'H', 'D', 'R'};
        for (const std::uint32_t side : {width, height})
            for (int shift = 24; shift >= 0; shift -= 8)
                bytes.push_back(static_cast<std::uint8_t>(side >> shift));
        for (const std::uint8_t byte : {8, 6, 0, 0, 0})
            bytes.push_back(byte);
        std::uint32_t crc = 0xFFFFFFFF;
        for (std::size_t at = 12; at < bytes.size(); ++at) {
            crc ^= bytes[at];
            for (int bit = 0; bit < 8; ++bit)
                crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
        }
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.push_back(static_cast<std::uint8_t>(~crc >> shift));
        std::vector<std::byte> result(bytes.size());
        std::ranges::transform(bytes, result.begin(), [](std::uint8_t b) { return std::byte{b}; });
        return result;
    };
    for (const auto& [width, height] :
         {std::pair{0U, 4U}, std::pair{4U, 0U}, std::pair{100000U, 4U}, std::pair{4U, 100000U},
          std::pair{0x7FFFFFFFU, 0x7FFFFFFFU}}) {
        EXPECT_FALSE(Codec().ReadSize(header(width, height))) << width << " " << height;
        EXPECT_FALSE(Codec().Decode(header(width, height))) << width << " " << height;
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
        EXPECT_TRUE(Near(MeanOf(*scaled), {128, 0, 0, 128}, 6));
        EXPECT_TRUE(Near(PixelAt(*scaled, 0, 0), PixelOf(Red)));
        EXPECT_TRUE(Near(PixelAt(*scaled, size.width - 1, size.height - 1), PixelOf(Clear)));
    }
}
