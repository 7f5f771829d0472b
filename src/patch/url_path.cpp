#include "patch/url_path.h"

#include "platform/text.h"

namespace Launcher {

namespace {

bool StaysAsItIs(char character) {
    constexpr std::string_view marks = "-._~/";
    return (character >= 'A' && character <= 'Z') || (character >= 'a' && character <= 'z') ||
           (character >= '0' && character <= '9') || marks.find(character) != marks.npos;
}

}  // namespace

std::wstring EncodeUrlPath(std::wstring_view name) {
    constexpr wchar_t digits[] = L"0123456789ABCDEF";
    std::wstring encoded;
    encoded.reserve(name.size());
    for (const char character : Platform::Utf8FromWide(name)) {
        if (StaysAsItIs(character)) {
            encoded += static_cast<wchar_t>(character);
        } else {
            const auto byte = static_cast<unsigned char>(character);
            encoded += {L'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return encoded;
}

}  // namespace Launcher
