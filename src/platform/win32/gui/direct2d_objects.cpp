#include "platform/win32/gui/direct2d_objects.h"

namespace Platform::Win32 {

GraphicsResult NativeBitmap::Write(std::span<const std::byte> pixels, std::size_t stride) {
    const std::size_t row = static_cast<std::size_t>(size_.width) * 4;
    const std::size_t needed = stride * static_cast<std::size_t>(size_.height - 1) + row;
    if (pixels.size() < needed || stride < row) return GraphicsFailed;
    return ResultOf(bitmap_->CopyFromMemory(nullptr, pixels.data(), static_cast<UINT32>(stride)));
}

}  // namespace Platform::Win32
