#include "platform/host/gui/cairo_bitmap.h"

#include <cstring>

namespace Platform::Host {

namespace {

CairoSurface MakeSurface(cairo_format_t format, Size size) {
    return CairoSurface(cairo_image_surface_create(format, size.width, size.height));
}

}  // namespace

CairoBitmapPixels::CairoBitmapPixels(Size size, BitmapAlpha alpha)
    : size_(size),
      surface_(MakeSurface(alpha == BitmapAlpha::Ignore ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32,
                           size)) {}

bool CairoBitmapPixels::IsValid() const {
    return cairo_surface_status(surface_.get()) == CAIRO_STATUS_SUCCESS;
}

void CairoBitmapPixels::Write(std::span<const std::byte> pixels, std::size_t stride) {
    cairo_surface_flush(surface_.get());
    unsigned char* to = cairo_image_surface_get_data(surface_.get());
    const auto toStride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface_.get()));
    const std::size_t rowBytes = static_cast<std::size_t>(size_.width) * 4;
    for (std::size_t y = 0; y < static_cast<std::size_t>(size_.height); ++y)
        std::memcpy(to + y * toStride, pixels.data() + y * stride, rowBytes);
    cairo_surface_mark_dirty(surface_.get());
    ++version_;
}

cairo_surface_t* CairoBitmapPixels::Scaled(Size size) {
    const bool asked = scaledSize_ == size && scaledVersion_ == version_;
    if (asked && scaled_) return scaled_.get();
    scaledSize_ = size;
    scaledVersion_ = version_;
    scaled_.reset();
    // A moving picture is asked for once in each of its states: a copy would not be used again.
    if (!asked || size.width < 1 || size.height < 1) return nullptr;

    CairoSurface made = MakeSurface(cairo_image_surface_get_format(surface_.get()), size);
    const CairoContext context(cairo_create(made.get()));
    cairo_scale(context.get(), static_cast<double>(size.width) / size_.width,
                static_cast<double>(size.height) / size_.height);
    cairo_set_source_surface(context.get(), surface_.get(), 0, 0);
    cairo_pattern_t* pattern = cairo_get_source(context.get());
    cairo_pattern_set_filter(pattern, CAIRO_FILTER_BILINEAR);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
    cairo_set_operator(context.get(), CAIRO_OPERATOR_SOURCE);
    cairo_paint(context.get());
    if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    scaled_ = std::move(made);
    return scaled_.get();
}

GraphicsResult CairoBitmap::Write(std::span<const std::byte> pixels, std::size_t stride) {
    const Size size = GetSize();
    const std::size_t needed = stride * static_cast<std::size_t>(size.height - 1) +
                               static_cast<std::size_t>(size.width) * 4;
    if (pixels.size() < needed || stride < static_cast<std::size_t>(size.width) * 4)
        return GraphicsFailed;
    pixels_->Write(pixels, stride);
    return GraphicsOk;
}

}  // namespace Platform::Host
