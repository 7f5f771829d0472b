#pragma once

#include <wincodec.h>

#include "platform/image_codec.h"
#include "platform/win32/gui/com.h"

namespace Platform::Win32 {

/// Images by the system's codecs.
class WicCodec final : public ImageCodec {
public:
    WicCodec();

    std::optional<Size> ReadSize(std::span<const std::byte> encoded) override;
    std::optional<Image> Decode(std::span<const std::byte> encoded) override;
    std::optional<Image> Scale(const Image& image, Size size) override;
    std::vector<std::byte> EncodePng(const Image& image) override;

private:
    Com<IWICBitmapFrameDecode> OpenFrame(std::span<const std::byte> encoded);
    /// Null on failure.
    Com<IWICBitmapSource> Convert(IWICBitmapSource* source, const GUID& format);

    ComponentsInUse components_;
    Com<IWICImagingFactory> factory_;
};

}  // namespace Platform::Win32
