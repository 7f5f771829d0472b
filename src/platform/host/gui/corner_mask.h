#pragma once

#include <cstdint>
#include <vector>

#include "platform/geometry.h"

namespace Platform::Host {

/// How much of each pixel near a corner lies inside of a rectangle's rounding, 0 to 255.
class CornerMask {
public:
    /// radius in pixels; 0 cuts nothing.
    explicit CornerMask(int radius);

    int Radius() const { return radius_; }
    /// x and y from the corner inwards, both below the radius.
    std::uint8_t Coverage(int x, int y) const;
    /// The part of a pixel of a rectangle of that size.
    std::uint8_t CoverageIn(Size size, int x, int y) const;

private:
    int radius_;
    std::vector<std::uint8_t> coverage_;
};

}  // namespace Platform::Host
