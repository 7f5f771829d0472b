#include "url.h"

#include <charconv>

namespace Server {

std::string DecodePercent(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned byte = 0;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(&text[i + 1], &text[i + 1] + 2, byte, 16).ptr == &text[i + 1] + 2) {
            decoded += static_cast<char>(byte);
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

std::optional<std::string> QueryValue(std::string_view query, std::string_view name) {
    while (!query.empty()) {
        const std::size_t end = query.find('&');
        const std::string_view pair = query.substr(0, end);
        if (pair.starts_with(name) && pair.size() > name.size() && pair[name.size()] == '=') {
            return DecodePercent(pair.substr(name.size() + 1));
        }
        query = end == query.npos ? std::string_view() : query.substr(end + 1);
    }
    return std::nullopt;
}

std::optional<Target> ParseTarget(std::string_view target) {
    if (!target.starts_with('/')) return std::nullopt;
    const std::size_t question = target.find('?');
    Target parsed;
    parsed.path =
        DecodePercent(target.substr(1, question == target.npos ? question : question - 1));
    if (question != target.npos) parsed.rawQuery = target.substr(question + 1);
    if (parsed.path.find('\0') != std::string::npos) return std::nullopt;
    const std::string framed = "/" + parsed.path + "/";
    if (framed.find("/../") != std::string::npos) return std::nullopt;
    return parsed;
}

}  // namespace Server
