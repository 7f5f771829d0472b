#pragma once

#include <vector>

#include "platform/geometry.h"

namespace Platform {

/// The screens. Message thread only.
class Display {
public:
    virtual ~Display() = default;

    /// Pixels of the primary screen.
    virtual Size DesktopSize() = 0;
    /// Every mode of the primary screen, in the system's order, with duplicates for colour depths
    /// and refresh rates.
    virtual std::vector<Size> ListModes() = 0;
};

}  // namespace Platform
