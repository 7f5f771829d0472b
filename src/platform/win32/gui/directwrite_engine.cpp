#include "platform/win32/gui/directwrite_engine.h"

#include <algorithm>

#include "platform/win32/gui/directwrite_layout.h"
#include "platform/win32/gui/font_weight.h"

namespace Platform::Win32 {

namespace {

constexpr float LargestBox = 1'000'000.0F;

DWRITE_FONT_STYLE StyleFrom(std::uint32_t style) {
    return style <= DWRITE_FONT_STYLE_ITALIC ? static_cast<DWRITE_FONT_STYLE>(style)
                                             : DWRITE_FONT_STYLE_NORMAL;
}

DWRITE_FONT_STRETCH StretchFrom(std::uint32_t stretch) {
    return stretch >= 1 && stretch <= 9 ? static_cast<DWRITE_FONT_STRETCH>(stretch)
                                        : DWRITE_FONT_STRETCH_NORMAL;
}

UINT32 Length(std::size_t length) {
    return static_cast<UINT32>(length);
}

}  // namespace

DirectWriteEngine::DirectWriteEngine() {
    // Without it no text can be set, and each call says so.
    DWriteCreateFactory(DWRITE_FACTORY_TYPE_SHARED, __uuidof(IDWriteFactory),
                        reinterpret_cast<IUnknown**>(factory_.GetAddressOf()));
    if (factory_) factory_->QueryInterface(IID_PPV_ARGS(newFactory_.GetAddressOf()));
}

DirectWriteEngine::~DirectWriteEngine() {
    collection_.Reset();
    files_.clear();
    if (loader_) factory_->UnregisterFontFileLoader(loader_.Get());
}

Created<TextFormat> DirectWriteEngine::CreateTextFormat(const TextFormatSpec& spec) {
    if (!factory_) return GraphicsNotSupported;
    Com<IDWriteTextFormat> format;
    const HRESULT result = factory_->CreateTextFormat(
        spec.family.c_str(), spec.privateFamily ? collection_.Get() : nullptr,
        static_cast<DWRITE_FONT_WEIGHT>(std::clamp<std::uint32_t>(spec.weight, 1, 999)),
        StyleFrom(spec.style), StretchFrom(spec.stretch), spec.size, spec.locale.c_str(),
        format.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    auto made = std::make_unique<DirectWriteFormat>(std::move(format));
    made->SetWordWrapping(false);
    return made;
}

Created<TextLayout> DirectWriteEngine::CreateTextLayout(const TextFormat& format,
                                                        const TextLayoutSpec& spec) {
    if (!factory_) return GraphicsNotSupported;
    Com<IDWriteTextLayout> layout;
    const std::size_t length = spec.text.size();
    HRESULT result = factory_->CreateTextLayout(
        spec.text.data(), Length(length), static_cast<const DirectWriteFormat&>(format).Get(),
        std::clamp(spec.maxWidth, 0.0F, LargestBox), std::clamp(spec.maxHeight, 0.0F, LargestBox),
        layout.GetAddressOf());
    if (SUCCEEDED(result) && spec.underline)
        result = layout->SetUnderline(TRUE, {0, Length(length)});
    for (const TextRange& range : spec.bold) {
        const std::size_t start = std::min(range.start, length);
        const std::size_t most = std::min(range.length, length - start);
        if (SUCCEEDED(result))
            result = layout->SetFontWeight(DWRITE_FONT_WEIGHT_BOLD, {Length(start), Length(most)});
    }
    if (FAILED(result)) return ResultOf(result);
    return std::make_unique<DirectWriteLayout>(std::move(layout), spec.text);
}

HRESULT DirectWriteEngine::OpenLoader() {
    if (loader_) return S_OK;
    Com<IDWriteInMemoryFontFileLoader> loader;
    HRESULT result = newFactory_->CreateInMemoryFontFileLoader(loader.GetAddressOf());
    if (SUCCEEDED(result)) result = factory_->RegisterFontFileLoader(loader.Get());
    if (SUCCEEDED(result)) loader_ = std::move(loader);
    return result;
}

GraphicsResult DirectWriteEngine::AddFile(std::span<const std::byte> file) {
    if (!newFactory_) return GraphicsNotSupported;
    HRESULT result = OpenLoader();
    if (FAILED(result)) return ResultOf(result);
    std::vector<std::byte> content(file.begin(), file.end());
    CorrectWeight(content);
    Com<IDWriteFontFile> reference;
    // The loader keeps a copy of its own.
    result = loader_->CreateInMemoryFontFileReference(newFactory_.Get(), content.data(),
                                                      Length(content.size()), nullptr,
                                                      reference.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    files_.push_back(std::move(reference));
    return GraphicsOk;
}

GraphicsResult DirectWriteEngine::BuildCollection() {
    if (!newFactory_) return GraphicsNotSupported;
    Com<IDWriteFontSetBuilder1> builder;
    HRESULT result = newFactory_->CreateFontSetBuilder(builder.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    for (const auto& file : files_) {
        result = builder->AddFontFile(file.Get());
        if (FAILED(result)) return ResultOf(result);
    }
    Com<IDWriteFontSet> set;
    result = builder->CreateFontSet(set.GetAddressOf());
    if (FAILED(result)) return ResultOf(result);
    collection_.Reset();
    return ResultOf(
        newFactory_->CreateFontCollectionFromFontSet(set.Get(), collection_.GetAddressOf()));
}

}  // namespace Platform::Win32
