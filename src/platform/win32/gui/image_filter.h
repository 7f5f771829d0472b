#pragma once

#include "platform/image_codec.h"

namespace Platform::Win32 {

/// The image in another size: each new pixel is the weighted mean of all old ones that it covers;
/// enlarging is linear. The system's own scaler would do, but a Windows that is played by Wine only
/// has the one that picks single pixels. Both sizes are at least 1 by 1.
Image FilterImage(const Image& image, Size size);

}  // namespace Platform::Win32
