#include "platform/win32/gui/wic_codec.h"

#include "platform/win32/gui/image_filter.h"

namespace Platform::Win32 {

namespace {

/// None where a side is empty or beyond the limit.
std::optional<Size> SizeOf(IWICBitmapSource* source) {
    UINT width = 0;
    UINT height = 0;
    constexpr auto Most = static_cast<UINT>(LargestImageSide);
    if (FAILED(source->GetSize(&width, &height))) return std::nullopt;
    if (width < 1 || height < 1 || width > Most || height > Most) return std::nullopt;
    return Size{static_cast<int>(width), static_cast<int>(height)};
}

BYTE* BytesOf(std::byte* bytes) {
    return reinterpret_cast<BYTE*>(bytes);
}

/// What was written to the stream so far; empty on failure.
std::vector<std::byte> ReadBack(IStream* stream) {
    STATSTG state{};
    LARGE_INTEGER start{};
    if (FAILED(stream->Stat(&state, STATFLAG_NONAME)) ||
        FAILED(stream->Seek(start, STREAM_SEEK_SET, nullptr)))
        return {};
    std::vector<std::byte> bytes(static_cast<std::size_t>(state.cbSize.QuadPart));
    ULONG read = 0;
    if (FAILED(stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read)) ||
        read != bytes.size())
        return {};
    return bytes;
}

}  // namespace

WicCodec::WicCodec() {
    // Without it every image counts as broken.
    CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                     IID_PPV_ARGS(factory_.GetAddressOf()));
}

Com<IWICBitmapFrameDecode> WicCodec::OpenFrame(std::span<const std::byte> encoded) {
    Com<IWICStream> stream;
    Com<IWICBitmapDecoder> decoder;
    Com<IWICBitmapFrameDecode> frame;
    if (!factory_ || encoded.empty() || encoded.size() > MAXDWORD ||
        FAILED(factory_->CreateStream(stream.GetAddressOf())))
        return nullptr;
    // The stream only reads, in spite of its pointer.
    auto* bytes = BytesOf(const_cast<std::byte*>(encoded.data()));
    if (FAILED(stream->InitializeFromMemory(bytes, static_cast<DWORD>(encoded.size()))) ||
        FAILED(factory_->CreateDecoderFromStream(
            stream.Get(), nullptr, WICDecodeMetadataCacheOnLoad, decoder.GetAddressOf())) ||
        FAILED(decoder->GetFrame(0, frame.GetAddressOf())))
        return nullptr;
    return frame;
}

Com<IWICBitmapSource> WicCodec::Convert(IWICBitmapSource* source, const GUID& format) {
    Com<IWICFormatConverter> converter;
    if (FAILED(factory_->CreateFormatConverter(converter.GetAddressOf())) ||
        FAILED(converter->Initialize(source, format, WICBitmapDitherTypeNone, nullptr, 0.0,
                                     WICBitmapPaletteTypeCustom)))
        return nullptr;
    return converter;
}

std::optional<Size> WicCodec::ReadSize(std::span<const std::byte> encoded) {
    const Com<IWICBitmapFrameDecode> frame = OpenFrame(encoded);
    return frame ? SizeOf(frame.Get()) : std::nullopt;
}

std::optional<Image> WicCodec::Decode(std::span<const std::byte> encoded) {
    const Com<IWICBitmapFrameDecode> frame = OpenFrame(encoded);
    const std::optional<Size> size = frame ? SizeOf(frame.Get()) : std::nullopt;
    if (!size) return std::nullopt;
    const Com<IWICBitmapSource> source = Convert(frame.Get(), GUID_WICPixelFormat32bppPBGRA);
    if (!source) return std::nullopt;
    Image image{*size, {}};
    image.pixels.resize(image.Stride() * static_cast<std::size_t>(size->height));
    if (FAILED(source->CopyPixels(nullptr, static_cast<UINT>(image.Stride()),
                                  static_cast<UINT>(image.pixels.size()),
                                  BytesOf(image.pixels.data()))))
        return std::nullopt;
    return image;
}

std::optional<Image> WicCodec::Scale(const Image& image, Size size) {
    const bool possible = !image.IsEmpty() && size.width >= 1 && size.height >= 1 &&
                          size.width <= LargestImageSide && size.height <= LargestImageSide;
    if (!possible) return std::nullopt;
    return FilterImage(image, size);
}

std::vector<std::byte> WicCodec::EncodePng(const Image& image) {
    if (!factory_ || image.IsEmpty()) return {};
    Com<IWICBitmap> bitmap;
    if (FAILED(factory_->CreateBitmapFromMemory(
            static_cast<UINT>(image.size.width), static_cast<UINT>(image.size.height),
            GUID_WICPixelFormat32bppPBGRA, static_cast<UINT>(image.Stride()),
            static_cast<UINT>(image.pixels.size()),
            BytesOf(const_cast<std::byte*>(image.pixels.data())), bitmap.GetAddressOf())))
        return {};
    const Com<IWICBitmapSource> source = Convert(bitmap.Get(), GUID_WICPixelFormat32bppBGRA);
    Com<IStream> stream;
    Com<IWICBitmapEncoder> encoder;
    Com<IWICBitmapFrameEncode> frame;
    if (!source || FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf())) ||
        FAILED(factory_->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.GetAddressOf())) ||
        FAILED(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache)) ||
        FAILED(encoder->CreateNewFrame(frame.GetAddressOf(), nullptr)) ||
        FAILED(frame->Initialize(nullptr)) || FAILED(frame->WriteSource(source.Get(), nullptr)) ||
        FAILED(frame->Commit()) || FAILED(encoder->Commit()))
        return {};
    return ReadBack(stream.Get());
}

}  // namespace Platform::Win32
