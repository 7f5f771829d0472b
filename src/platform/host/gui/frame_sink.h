#pragma once

#include <cairo.h>
#include <cstddef>

#include "platform/drawing.h"

namespace Platform::Host {

/// Where finished frames go.
class FrameSink {
public:
    virtual ~FrameSink() = default;

    /// Shows the frame (premultiplied BGRA, as Image has it). changed is the part that differs
    /// from the last frame shown by this target.
    [[nodiscard]] virtual GraphicsResult ShowFrame(const std::byte* pixels, std::size_t stride,
                                                   Size size, const cairo_region_t* changed,
                                                   const Presentation& presentation) = 0;
    /// True once after the screen has lost what it showed: the next frame is shown whole.
    virtual bool TakeLoss() = 0;
};

}  // namespace Platform::Host
