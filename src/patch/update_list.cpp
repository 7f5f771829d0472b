#include "patch/update_list.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "platform/text.h"

namespace Launcher {
namespace {

std::uint32_t ParseSize(std::string_view text) {
    std::uint32_t size = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), size);
    if (result.ec == std::errc::result_out_of_range) {
        return std::numeric_limits<std::uint32_t>::max();
    }
    return size;
}

}  // namespace

std::string_view TrimLine(std::string_view line) {
    line = line.substr(0, line.find_last_not_of("\r\n ") + 1);
    return line.substr(std::min(line.find_first_not_of("\r\n"), line.size()));
}

std::optional<ManifestEntry> ParseLine(std::string_view line) {
    line = TrimLine(line);
    if (line.starts_with("deleted:")) return std::nullopt;
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || equals + 1 == line.size()) return std::nullopt;

    const std::string_view value = line.substr(equals + 1);
    const std::size_t tab = value.find('\t');
    ManifestEntry entry;
    const std::wstring name = Platform::WideFromUtf8(line.substr(0, equals));
    // To the size: there may be very many, and a path that had to grow would have twice that.
    entry.path.reserve(DataFolder.size() + name.size());
    entry.path.append(DataFolder).append(name);
    entry.hash = value.substr(0, tab);
    if (tab != std::string_view::npos) entry.size = ParseSize(value.substr(tab + 1));
    return entry;
}

std::wstring NormalizedKey(std::wstring_view path) {
    std::wstring key(path);
    std::ranges::replace(key, L'\\', L'/');
    for (wchar_t& character : key)
        character = Platform::LowerCase(character);
    return key;
}

}  // namespace Launcher
