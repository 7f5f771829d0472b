#include <cstdint>
#include <cstdlib>

#include "platform/desktop.h"

using namespace Platform;

namespace {

/// Larger ones only cost time: what they can do wrong, smaller ones do too.
constexpr int MostPixels = 1 << 22;

/// Ends the process, which is what the fuzzer takes for a finding.
void Demand(bool condition) {
    if (!condition) std::abort();
}

void DemandWhole(const Image& image) {
    Demand(image.size.width >= 1 && image.size.width <= LargestImageSide);
    Demand(image.size.height >= 1 && image.size.height <= LargestImageSide);
    Demand(image.pixels.size() == image.Stride() * static_cast<std::size_t>(image.size.height));
    for (std::size_t i = 0; i < image.pixels.size(); i += 4)
        for (std::size_t part = i; part < i + 3; ++part)
            Demand(image.pixels[part] <= image.pixels[i + 3]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::unique_ptr<Graphics> graphics = OpenGraphics();
    ImageCodec& codec = graphics->GetImageCodec();
    const auto encoded = std::as_bytes(std::span(data, size));

    const std::optional<Size> told = codec.ReadSize(encoded);
    if (told && told->width > MostPixels / told->height) return 0;
    const std::optional<Image> image = codec.Decode(encoded);
    if (!image) return 0;
    Demand(told == image->size);
    DemandWhole(*image);

    const std::optional<Image> scaled = codec.Scale(*image, {7, 3});
    Demand(scaled && scaled->size == Size{7, 3});
    const std::optional<Image> again = codec.Decode(codec.EncodePng(*image));
    Demand(again && again->size == image->size);
    DemandWhole(*again);
    return 0;
}
