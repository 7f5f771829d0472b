#pragma once

#include "platform/drawing.h"

namespace Platform::Win32 {

/// What a target for the probe has to measure.
inline constexpr Size ProbeSize{64, 16};

/// Draws a soft edge, an arc with round ends, a rounded clip and an opacity mask, and looks whether
/// all of them are there. Not every Direct2D draws what it accepts.
bool PassesProbe(DrawTarget& target);

}  // namespace Platform::Win32
