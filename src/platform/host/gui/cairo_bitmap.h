#pragma once

#include <cstdint>
#include <memory>

#include "platform/drawing.h"
#include "platform/host/gui/cairo_owners.h"

namespace Platform::Host {

/// The pixels behind a bitmap, shared with the frames that show them, and the copy in the size in
/// which they were shown last.
class CairoBitmapPixels {
public:
    CairoBitmapPixels(Size size, BitmapAlpha alpha);

    bool IsValid() const;
    Size GetSize() const { return size_; }
    /// Grows with each Write.
    std::uint64_t Version() const { return version_; }
    void Write(std::span<const std::byte> pixels, std::size_t stride);

    cairo_surface_t* Surface() const { return surface_.get(); }
    /// The pixels in another size; kept as long as size and pixels stay the same, from the second
    /// time on that they are asked for. Null where scaling while painting is as good.
    cairo_surface_t* Scaled(Size size);

private:
    Size size_;
    CairoSurface surface_;
    std::uint64_t version_ = 0;
    CairoSurface scaled_;
    Size scaledSize_;
    std::uint64_t scaledVersion_ = 0;
};

class CairoBitmap final : public Bitmap {
public:
    explicit CairoBitmap(std::shared_ptr<CairoBitmapPixels> pixels) : pixels_(std::move(pixels)) {}

    Size GetSize() const override { return pixels_->GetSize(); }
    GraphicsResult Write(std::span<const std::byte> pixels, std::size_t stride) override;
    const std::shared_ptr<CairoBitmapPixels>& Pixels() const { return pixels_; }

private:
    std::shared_ptr<CairoBitmapPixels> pixels_;
};

}  // namespace Platform::Host
