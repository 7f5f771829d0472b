#include <algorithm>
#include <charconv>
#include <string_view>

#include "platform/http.h"
#include "platform/text.h"

namespace Platform {

namespace {

constexpr std::size_t MaximumHost = 511;
constexpr std::size_t MaximumPath = 2047;

/// The port behind a colon: empty text stands for none.
bool ReadPort(std::wstring_view text, std::uint16_t& port) {
    unsigned value = 0;
    for (const wchar_t character : text) {
        if (character < L'0' || character > L'9') return false;
        value = value * 10 + static_cast<unsigned>(character - L'0');
        if (value > 0xFFFF) return false;
    }
    port = static_cast<std::uint16_t>(value);
    return true;
}

bool ReadAuthority(std::wstring_view authority, CrackedUrl& cracked) {
    authority.remove_prefix(authority.find_last_of(L'@') + 1);  // a user's name is not used
    std::size_t hostEnd = authority.find(L':');
    if (authority.starts_with(L'[')) {
        const std::size_t bracket = authority.find(L']');
        if (bracket == std::wstring_view::npos) return false;
        hostEnd = bracket + 1;
    }
    const std::wstring_view host = authority.substr(0, hostEnd);
    const std::wstring_view rest = authority.substr(host.size());
    if (host.empty() || host.size() > MaximumHost) return false;
    if (!rest.empty() && (rest.front() != L':' || !ReadPort(rest.substr(1), cracked.port))) {
        return false;
    }
    cracked.host = host;
    return true;
}

}  // namespace

Error CrackUrl(const std::wstring& url, CrackedUrl& cracked) {
    constexpr std::wstring_view separator = L"://";
    const std::size_t schemeEnd = url.find(separator);
    if (schemeEnd == std::wstring::npos) return Error::HttpUnknownScheme;
    const std::wstring scheme = LowerCase(std::wstring_view(url).substr(0, schemeEnd));
    if (scheme != L"http" && scheme != L"https") return Error::HttpUnknownScheme;

    const std::wstring_view rest = std::wstring_view(url).substr(schemeEnd + separator.size());
    const std::size_t pathStart = std::min(rest.find_first_of(L"/?#"), rest.size());
    const std::wstring_view path = rest.substr(pathStart);
    CrackedUrl result;
    if (!ReadAuthority(rest.substr(0, pathStart), result)) return Error::HttpInvalidUrl;
    if (path.size() > MaximumPath) return Error::HttpInvalidUrl;
    result.secure = scheme == L"https";
    result.path = path.starts_with(L'/') ? path : L"/" + std::wstring(path);
    cracked = std::move(result);
    return Error::None;
}

}  // namespace Platform
