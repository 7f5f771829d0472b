#include "platform/host/gui/png_codec.h"

#include <cstring>
#include <png.h>

#include "platform/host/gui/cairo_owners.h"

namespace Platform::Host {

namespace {

/// libpng's image with its end.
struct PngImage : png_image {
    PngImage() : png_image{} { version = PNG_IMAGE_VERSION; }
    ~PngImage() { png_image_free(this); }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
};

/// Deflate makes no more of a byte than this.
constexpr std::uint64_t MostBytesOfOne = 1032;

/// Whether the file can hold all the rows that it promises, at a bit for each pixel at least, so
/// that a few bytes do not ask for a quarter of a gigabyte.
bool CanHold(std::span<const std::byte> encoded, const PngImage& png) {
    const std::uint64_t rowBytes = 1 + (png.width + 7) / 8;
    return rowBytes * png.height <= encoded.size() * MostBytesOfOne;
}

bool BeginRead(PngImage& png, std::span<const std::byte> encoded) {
    if (encoded.empty()) return false;
    if (!png_image_begin_read_from_memory(&png, encoded.data(), encoded.size())) return false;
    return png.width >= 1 && png.height >= 1 && png.width <= LargestImageSide &&
           png.height <= LargestImageSide && CanHold(encoded, png);
}

Size SizeOf(const PngImage& png) {
    return {static_cast<int>(png.width), static_cast<int>(png.height)};
}

void Premultiply(std::vector<std::byte>& pixels) {
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const unsigned alpha = std::to_integer<unsigned>(pixels[i + 3]);
        if (alpha == 255) continue;
        for (std::size_t part = i; part < i + 3; ++part) {
            // The exact quotient by 255, rounded.
            const unsigned product = std::to_integer<unsigned>(pixels[part]) * alpha + 128;
            pixels[part] = static_cast<std::byte>((product + (product >> 8)) >> 8);
        }
    }
}

std::vector<std::byte> Unpremultiplied(const Image& image) {
    std::vector<std::byte> pixels = image.pixels;
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        const unsigned alpha = std::to_integer<unsigned>(pixels[i + 3]);
        if (alpha == 255 || alpha == 0) continue;
        for (std::size_t part = i; part < i + 3; ++part) {
            const unsigned value = std::to_integer<unsigned>(pixels[part]) * 255 + alpha / 2;
            pixels[part] = static_cast<std::byte>(std::min(255U, value / alpha));
        }
    }
    return pixels;
}

/// A surface over the image's own pixels, which have to outlive it.
CairoSurface SurfaceOver(std::vector<std::byte>& pixels, Size size) {
    return CairoSurface(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(pixels.data()), CAIRO_FORMAT_ARGB32, size.width,
        size.height, size.width * 4));
}

}  // namespace

std::optional<Size> PngCodec::ReadSize(std::span<const std::byte> encoded) {
    PngImage png;
    if (!BeginRead(png, encoded)) return std::nullopt;
    return SizeOf(png);
}

std::optional<Image> PngCodec::Decode(std::span<const std::byte> encoded) {
    PngImage png;
    if (!BeginRead(png, encoded)) return std::nullopt;
    png.format = PNG_FORMAT_BGRA;
    Image image{SizeOf(png), {}};
    image.pixels.resize(PNG_IMAGE_SIZE(png));
    if (!png_image_finish_read(&png, nullptr, image.pixels.data(), 0, nullptr)) return std::nullopt;
    Premultiply(image.pixels);
    return image;
}

std::optional<Image> PngCodec::Scale(const Image& image, Size size) {
    const bool possible = !image.IsEmpty() && size.width >= 1 && size.height >= 1 &&
                          size.width <= LargestImageSide && size.height <= LargestImageSide;
    if (!possible) return std::nullopt;
    std::vector<std::byte> pixels = image.pixels;
    Image scaled{size, {}};
    scaled.pixels.resize(scaled.Stride() * static_cast<std::size_t>(size.height));
    const CairoSurface from = SurfaceOver(pixels, image.size);
    const CairoSurface to = SurfaceOver(scaled.pixels, size);
    const CairoContext context(cairo_create(to.get()));
    cairo_scale(context.get(), static_cast<double>(size.width) / image.size.width,
                static_cast<double>(size.height) / image.size.height);
    cairo_set_source_surface(context.get(), from.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(context.get()), CAIRO_FILTER_GOOD);
    cairo_pattern_set_extend(cairo_get_source(context.get()), CAIRO_EXTEND_PAD);
    cairo_set_operator(context.get(), CAIRO_OPERATOR_SOURCE);
    cairo_paint(context.get());
    if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS) return std::nullopt;
    cairo_surface_flush(to.get());
    return scaled;
}

std::vector<std::byte> PngCodec::EncodePng(const Image& image) {
    if (image.IsEmpty()) return {};
    PngImage png;
    png.width = static_cast<png_uint_32>(image.size.width);
    png.height = static_cast<png_uint_32>(image.size.height);
    png.format = PNG_FORMAT_BGRA;
    png.flags = PNG_IMAGE_FLAG_FAST;
    const std::vector<std::byte> pixels = Unpremultiplied(image);
    std::vector<std::byte> encoded(PNG_IMAGE_PNG_SIZE_MAX(png));
    png_alloc_size_t size = encoded.size();
    if (!png_image_write_to_memory(&png, encoded.data(), &size, 0, pixels.data(), 0, nullptr))
        return {};
    encoded.resize(size);
    return encoded;
}

}  // namespace Platform::Host
