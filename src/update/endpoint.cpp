#include "update/endpoint.h"

#include <charconv>

#include "patch/url_path.h"

namespace Launcher {

namespace {

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

}  // namespace

std::optional<std::uint32_t> ParseLauncherAnswer(std::string_view answer) {
    std::uint32_t crc = 0;
    for (const char character : answer) {
        if (!IsDigit(character)) break;
        crc = crc * 10 + static_cast<std::uint32_t>(character - '0');
    }
    return crc == 0 ? std::nullopt : std::optional(crc);
}

std::optional<PublishedClient> ParseClientAnswer(std::string_view answer) {
    PublishedClient client;
    const char* const end = answer.data() + answer.size();
    const auto crc = std::from_chars(answer.data(), end, client.crc);
    if (crc.ec != std::errc{} || crc.ptr == end) return std::nullopt;

    const std::string_view rest(crc.ptr, static_cast<std::size_t>(end - crc.ptr));
    const std::size_t size = rest.find_first_not_of("\t ");
    if (size == 0 || size == std::string_view::npos) return std::nullopt;
    const auto parsed = std::from_chars(rest.data() + size, end, client.size);
    if (parsed.ec != std::errc{} || client.size == 0) return std::nullopt;
    return client;
}

std::wstring EndpointUrl(const std::wstring& baseUrl, std::wstring_view publishedName) {
    return baseUrl + L"scripts/updater.php?f=" + EncodeUrlPath(publishedName);
}

}  // namespace Launcher
