#pragma once

#include <dwrite_3.h>
#include <vector>

#include "platform/fonts.h"
#include "platform/text_layout.h"
#include "platform/win32/gui/com.h"

namespace Platform::Win32 {

/// Text and private fonts by DirectWrite.
class DirectWriteEngine final : public TextEngine, public PrivateFonts {
public:
    DirectWriteEngine();
    ~DirectWriteEngine() override;
    DirectWriteEngine(const DirectWriteEngine&) = delete;
    DirectWriteEngine& operator=(const DirectWriteEngine&) = delete;

    Created<TextFormat> CreateTextFormat(const TextFormatSpec& spec) override;
    Created<TextLayout> CreateTextLayout(const TextFormat& format,
                                         const TextLayoutSpec& spec) override;
    GraphicsResult AddFile(std::span<const std::byte> file) override;
    GraphicsResult BuildCollection() override;

private:
    HRESULT OpenLoader();

    Com<IDWriteFactory> factory_;
    Com<IDWriteFactory5> newFactory_;  ///< null on systems that are too old for private fonts
    Com<IDWriteInMemoryFontFileLoader> loader_;
    std::vector<Com<IDWriteFontFile>> files_;
    Com<IDWriteFontCollection1> collection_;
};

}  // namespace Platform::Win32
