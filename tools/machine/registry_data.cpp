#include "registry_data.h"

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "failure.h"
#include "platform/text.h"
#include "platform/utf16.h"

namespace MachineTool {

using Platform::RegistryType;
using Platform::RegistryValue;

namespace {

using Bytes = std::vector<std::byte>;

std::string FormatText(const Bytes& data) {
    std::wstring text = Platform::WideFromUtf16(data);
    text.erase(text.find_last_not_of(L'\0') + 1);
    return Platform::Utf8FromWide(text);
}

Bytes ParseText(const std::string& text) {
    return Platform::Utf16FromWide(Platform::WideFromUtf8(text) + L'\0');
}

std::string FormatBinary(const Bytes& data) {
    std::string text;
    for (const std::byte byte : data) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", std::to_integer<unsigned>(byte));
        text += digits;
    }
    return text;
}

/// Reads all of the text as a number.
bool ParseNumber(std::string_view text, int base, std::uint32_t& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number, base);
    return result.ec == std::errc{} && result.ptr == end;
}

Bytes ParseBinary(const std::string& text) {
    if (text.size() % 2 != 0) throw Failure("\"" + text + "\" has half a byte");
    Bytes data;
    for (std::size_t at = 0; at < text.size(); at += 2) {
        std::uint32_t byte = 0;
        if (!ParseNumber(std::string_view(text).substr(at, 2), 16, byte)) {
            throw Failure("\"" + text + "\" is no row of hexadecimal bytes");
        }
        data.push_back(static_cast<std::byte>(byte));
    }
    return data;
}

std::string FormatDword(const Bytes& data) {
    std::uint32_t number = 0;
    if (data.size() != sizeof number) return FormatBinary(data);
    std::memcpy(&number, data.data(), sizeof number);
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", number);
    return text;
}

Bytes ParseDword(const std::string& text) {
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    std::uint32_t number = 0;
    if (!ParseNumber(std::string_view(text).substr(hexadecimal ? 2 : 0), hexadecimal ? 16 : 10,
                     number)) {
        throw Failure("\"" + text + "\" is no 32-bit number");
    }
    const auto bytes = std::as_bytes(std::span(&number, 1));
    return {bytes.begin(), bytes.end()};
}

struct Type {
    RegistryType type;
    const char* name;
    std::string (*format)(const Bytes&);
    Bytes (*parse)(const std::string&);
};

constexpr Type Types[] = {
    {RegistryType::String, "REG_SZ", FormatText, ParseText},
    {RegistryType{2}, "REG_EXPAND_SZ", FormatText, ParseText},
    {RegistryType::Binary, "REG_BINARY", FormatBinary, ParseBinary},
    {RegistryType::Dword, "REG_DWORD", FormatDword, ParseDword},
};

const Type* FindType(RegistryType type) {
    for (const Type& known : Types) {
        if (known.type == type) return &known;
    }
    return nullptr;
}

}  // namespace

std::string TypeName(RegistryType type) {
    const Type* known = FindType(type);
    return known ? known->name : "REG_" + std::to_string(static_cast<std::uint32_t>(type));
}

std::string FormatData(const RegistryValue& value) {
    const Type* known = FindType(value.type);
    return known ? known->format(value.data) : FormatBinary(value.data);
}

RegistryValue ParseData(const std::string& typeName, const std::string& text) {
    std::string names;
    for (const Type& known : Types) {
        if (typeName == known.name) return {known.type, known.parse(text)};
        names += std::string(" ") + known.name;
    }
    throw Failure("type \"" + typeName + "\" is none of" + names);
}

}  // namespace MachineTool
