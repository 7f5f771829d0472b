#include "platform/utf16.h"

#include <cstdint>

namespace Platform {

namespace {

constexpr std::uint32_t HighBegin = 0xD800;
constexpr std::uint32_t LowBegin = 0xDC00;
constexpr std::uint32_t LowEnd = 0xE000;
constexpr std::uint32_t PairsBegin = 0x10000;

void Append(std::vector<std::byte>& bytes, std::uint32_t unit) {
    bytes.push_back(static_cast<std::byte>(unit & 0xFF));
    bytes.push_back(static_cast<std::byte>(unit >> 8));
}

}  // namespace

std::vector<std::byte> Utf16FromWide(std::wstring_view text) {
    std::vector<std::byte> bytes;
    bytes.reserve(text.size() * 2);
    for (const wchar_t character : text) {
        const auto value = static_cast<char32_t>(character);
        if (value < PairsBegin) {
            Append(bytes, value);
        } else {
            Append(bytes, HighBegin + ((value - PairsBegin) >> 10));
            Append(bytes, LowBegin + (value & 0x3FF));
        }
    }
    return bytes;
}

std::wstring WideFromUtf16(std::span<const std::byte> bytes) {
    const std::size_t count = bytes.size() / 2;
    const auto unit = [&](std::size_t index) {
        return std::to_integer<std::uint32_t>(bytes[2 * index]) |
               std::to_integer<std::uint32_t>(bytes[2 * index + 1]) << 8;
    };
    const auto isPair = [&](std::size_t index) {
        return unit(index) >= HighBegin && unit(index) < LowBegin && index + 1 < count &&
               unit(index + 1) >= LowBegin && unit(index + 1) < LowEnd;
    };
    std::wstring text;
    text.reserve(count);
    for (std::size_t index = 0; index < count; ++index) {
        std::uint32_t value = unit(index);
        if (sizeof(wchar_t) > 2 && isPair(index)) {
            value = PairsBegin + ((value - HighBegin) << 10) + (unit(++index) - LowBegin);
        }
        text += static_cast<wchar_t>(value);
    }
    return text;
}

}  // namespace Platform
