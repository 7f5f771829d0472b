#include "platform/win32/gui/font_weight.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Platform::Win32 {

namespace {

using Bytes = std::span<const std::byte>;

/// A big-endian number; 0 beyond the end.
std::uint32_t Big(Bytes bytes, std::size_t at, std::size_t size) {
    if (at > bytes.size() || size > bytes.size() - at) return 0;
    std::uint32_t number = 0;
    for (const std::byte part : bytes.subspan(at, size))
        number = number << 8 | std::to_integer<std::uint32_t>(part);
    return number;
}

std::uint32_t Big16(Bytes bytes, std::size_t at) {
    return Big(bytes, at, 2);
}

struct Table {
    std::size_t offset = 0;
    Bytes content;
};

/// Tables are named by four letters.
std::optional<Table> FindTable(Bytes font, std::uint32_t name) {
    constexpr std::size_t FirstEntry = 12;
    constexpr std::size_t EntrySize = 16;
    const std::size_t count = Big16(font, 4);
    for (std::size_t entry = FirstEntry; entry < FirstEntry + count * EntrySize;
         entry += EntrySize) {
        if (Big(font, entry, 4) != name) continue;
        const std::size_t offset = Big(font, entry + 8, 4);
        const std::size_t size = Big(font, entry + 12, 4);
        if (offset > font.size() || size > font.size() - offset) return std::nullopt;
        return Table{offset, font.subspan(offset, size)};
    }
    return std::nullopt;
}

/// The style's name, the typographic one before the one that knows bold and italic alone.
std::string StyleName(Bytes names) {
    constexpr std::size_t FirstEntry = 6;
    constexpr std::size_t EntrySize = 12;
    constexpr std::uint32_t WindowsPlatform = 3;
    constexpr std::uint32_t SimpleStyle = 2;
    constexpr std::uint32_t TypographicStyle = 17;
    std::string style;
    const std::size_t count = Big16(names, 2);
    const std::size_t texts = Big16(names, 4);
    for (std::size_t number = 0; number < count; ++number) {
        const std::size_t entry = FirstEntry + number * EntrySize;
        const std::uint32_t kind = Big16(names, entry + 6);
        if (Big16(names, entry) != WindowsPlatform ||
            (kind != TypographicStyle && (kind != SimpleStyle || !style.empty())))
            continue;
        style.clear();
        const std::size_t text = texts + Big16(names, entry + 10);
        for (std::size_t at = 0; at < Big16(names, entry + 8); at += 2) {
            // Only plain letters occur in the names that count.
            const std::uint32_t letter = Big16(names, text + at);
            style += letter < 128 ? static_cast<char>(letter) : '?';
        }
    }
    return style;
}

struct NamedWeight {
    std::string_view style;
    std::uint16_t weight;
};

constexpr std::array NamedWeights{
    NamedWeight{"Thin", 100},    NamedWeight{"ExtraLight", 200}, NamedWeight{"Light", 300},
    NamedWeight{"Regular", 400}, NamedWeight{"Medium", 500},     NamedWeight{"SemiBold", 600},
    NamedWeight{"Bold", 700},    NamedWeight{"ExtraBold", 800},  NamedWeight{"Black", 900},
};

}  // namespace

void CorrectWeight(std::vector<std::byte>& font) {
    constexpr std::uint32_t NamesTable = 0x6E616D65;    // "name"
    constexpr std::uint32_t MetricsTable = 0x4F532F32;  // "OS/2"
    constexpr std::size_t WeightAt = 4;
    const auto names = FindTable(font, NamesTable);
    const auto metrics = FindTable(font, MetricsTable);
    if (!names || !metrics || metrics->content.size() < WeightAt + 2) return;
    const auto named =
        std::ranges::find(NamedWeights, StyleName(names->content), &NamedWeight::style);
    if (named == NamedWeights.end()) return;
    font[metrics->offset + WeightAt] = static_cast<std::byte>(named->weight >> 8);
    font[metrics->offset + WeightAt + 1] = static_cast<std::byte>(named->weight & 0xFF);
}

}  // namespace Platform::Win32
