#include "platform/host/gui/corner_mask.h"

#include <algorithm>

namespace Platform::Host {

namespace {

/// Samples along each side of a pixel.
constexpr int Samples = 8;

std::uint8_t CoverageOf(int radius, int x, int y) {
    int inside = 0;
    for (int row = 0; row < Samples; ++row) {
        for (int column = 0; column < Samples; ++column) {
            const float dx =
                static_cast<float>(radius - x) - (static_cast<float>(column) + 0.5F) / Samples;
            const float dy =
                static_cast<float>(radius - y) - (static_cast<float>(row) + 0.5F) / Samples;
            if (dx * dx + dy * dy <= static_cast<float>(radius * radius)) ++inside;
        }
    }
    return static_cast<std::uint8_t>(inside * 255 / (Samples * Samples));
}

}  // namespace

CornerMask::CornerMask(int radius) : radius_(std::max(0, radius)) {
    for (int y = 0; y < radius_; ++y)
        for (int x = 0; x < radius_; ++x)
            coverage_.push_back(CoverageOf(radius_, x, y));
}

std::uint8_t CornerMask::Coverage(int x, int y) const {
    const int index = y * radius_ + x;
    return coverage_[static_cast<std::size_t>(index)];
}

std::uint8_t CornerMask::CoverageIn(Size size, int x, int y) const {
    const int fromSide = std::min(x, size.width - 1 - x);
    const int fromEnd = std::min(y, size.height - 1 - y);
    if (fromSide >= radius_ || fromEnd >= radius_ || fromSide < 0 || fromEnd < 0) return 255;
    return Coverage(fromSide, fromEnd);
}

}  // namespace Platform::Host
