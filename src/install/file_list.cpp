#include "install/file_list.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "patch/file_names.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr std::string_view DeletionMark = "deleted:";

std::string_view WithoutTrailingBlanks(std::string_view line) {
    const std::size_t last = line.find_last_not_of("\r \t");
    return line.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

bool LeavesFolder(std::string_view path) {
    return path.find("..") != std::string_view::npos || path.front() == '/' ||
           path.front() == '\\' || (path.size() > 1 && path[1] == ':');
}

std::optional<FileListEntry> ParseFileLine(std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos || line.starts_with(DeletionMark)) return std::nullopt;
    const std::size_t tab = line.find('\t', equals);
    if (tab == std::string_view::npos) return std::nullopt;
    const std::string_view path = line.substr(0, equals);
    const std::string_view size = line.substr(tab + 1);
    if (path.empty() || size.empty() || LeavesFolder(path)) return std::nullopt;

    FileListEntry entry{.path = Platform::WideFromUtf8(path)};
    std::replace(entry.path.begin(), entry.path.end(), L'\\', L'/');
    if (!IsPathInsideFolder(entry.path)) return std::nullopt;
    // What follows the digits is not looked at; no digits at all are 0.
    std::from_chars(size.data(), size.data() + size.size(), entry.size);
    return entry;
}

}  // namespace

std::vector<FileListEntry> ParseFileList(std::string_view text) {
    std::vector<FileListEntry> entries;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (auto entry = ParseFileLine(WithoutTrailingBlanks(text.substr(0, end)))) {
            entries.push_back(std::move(*entry));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return entries;
}

}  // namespace Launcher
