#include "platform/win32/gui/image_filter.h"

#include <algorithm>
#include <cmath>

namespace Platform::Win32 {

namespace {

constexpr std::size_t Channels = 4;

/// What a new row or column takes from the old ones.
struct Share {
    std::size_t first = 0;
    std::vector<float> weights;  ///< of the old ones from first on; their sum is 1
};

/// A triangle over each new pixel, as wide as two of the larger kind.
std::vector<Share> FindShares(int from, int to) {
    const double ratio = static_cast<double>(from) / to;
    const double reach = std::max(1.0, ratio);
    std::vector<Share> shares(static_cast<std::size_t>(to));
    for (int at = 0; at < to; ++at) {
        const double center = (at + 0.5) * ratio - 0.5;
        const int first = std::max(0, static_cast<int>(std::ceil(center - reach)));
        const int last = std::min(from - 1, static_cast<int>(std::floor(center + reach)));
        Share& share = shares[static_cast<std::size_t>(at)];
        share.first = static_cast<std::size_t>(first);
        double sum = 0.0;
        for (int old = first; old <= last; ++old)
            sum += 1.0 - std::abs(old - center) / reach;
        for (int old = first; old <= last; ++old) {
            share.weights.push_back(
                static_cast<float>((1.0 - std::abs(old - center) / reach) / sum));
        }
    }
    return shares;
}

/// Filters lines of values: line n starts at n * lineStep, its pixels lie pixelStep apart.
void FilterLines(const std::vector<float>& from, std::vector<float>& to, std::size_t lines,
                 const std::vector<Share>& shares, std::size_t fromLine, std::size_t toLine,
                 std::size_t pixelStep) {
    for (std::size_t line = 0; line < lines; ++line) {
        for (std::size_t at = 0; at < shares.size(); ++at) {
            const float* old = from.data() + line * fromLine + shares[at].first * pixelStep;
            float* result = to.data() + line * toLine + at * pixelStep;
            for (const float weight : shares[at].weights) {
                for (std::size_t channel = 0; channel < Channels; ++channel)
                    result[channel] += weight * old[channel];
                old += pixelStep;
            }
        }
    }
}

}  // namespace

Image FilterImage(const Image& image, Size size) {
    const auto oldWidth = static_cast<std::size_t>(image.size.width);
    const auto oldHeight = static_cast<std::size_t>(image.size.height);
    const auto width = static_cast<std::size_t>(size.width);
    const auto height = static_cast<std::size_t>(size.height);
    std::vector<float> old(image.pixels.size());
    std::ranges::transform(image.pixels, old.begin(), [](std::byte value) {
        return static_cast<float>(std::to_integer<int>(value));
    });
    std::vector<float> narrowed(width * oldHeight * Channels);
    FilterLines(old, narrowed, oldHeight, FindShares(image.size.width, size.width),
                oldWidth * Channels, width * Channels, Channels);
    std::vector<float> filtered(width * height * Channels);
    FilterLines(narrowed, filtered, width, FindShares(image.size.height, size.height), Channels,
                Channels, width * Channels);
    Image result{size, std::vector<std::byte>(filtered.size())};
    std::ranges::transform(filtered, result.pixels.begin(), [](float value) {
        return static_cast<std::byte>(std::lround(std::clamp(value, 0.0F, 255.0F)));
    });
    return result;
}

}  // namespace Platform::Win32
