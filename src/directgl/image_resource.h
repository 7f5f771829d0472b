#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "platform/drawing.h"

namespace DirectGL {

class Gui;

namespace Utilities {

/// The bytes of an encoded image. Everybody who shows it shares it, and makes its bitmap from it
/// anew when the drawing target has changed.
struct ResourceHandle {
    std::vector<std::byte> bytes;
};

std::shared_ptr<const ResourceHandle> MakeResourceHandle(std::span<const std::byte> bytes);

/// A bitmap for the target; null without a target, and, with a line in the log, for bytes that
/// are no image.
std::unique_ptr<Platform::Bitmap> GetImageFromBuffer(std::span<const std::byte> bytes,
                                                     Platform::DrawTarget* target,
                                                     Platform::ImageCodec& codec);

}  // namespace Utilities

using ImageHandle = std::shared_ptr<const Utilities::ResourceHandle>;

/// An image that a widget shows: the shared bytes, and the bitmap for the present target.
class ImageResource {
public:
    /// A null handle takes the image away.
    void Set(const Gui* gui, ImageHandle handle);
    void CreateBitmap(const Gui* gui);
    void ReleaseBitmap() { bitmap_.reset(); }
    const ImageHandle& GetHandle() const { return handle_; }
    /// Null while there is no image or no target.
    const Platform::Bitmap* GetBitmap() const { return bitmap_.get(); }

private:
    ImageHandle handle_;
    std::unique_ptr<Platform::Bitmap> bitmap_;
};

}  // namespace DirectGL
