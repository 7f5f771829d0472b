#include "common/path_text.h"

namespace Launcher {

namespace {

constexpr std::wstring_view Separators = L"\\/";

}  // namespace

std::wstring FileNameOf(std::wstring_view path) {
    const std::size_t separator = path.find_last_of(Separators);
    return std::wstring(separator == path.npos ? path : path.substr(separator + 1));
}

std::wstring FolderOf(std::wstring_view path) {
    const std::size_t separator = path.find_last_of(Separators);
    return std::wstring(separator == path.npos ? L"" : path.substr(0, separator));
}

std::wstring JoinPath(std::wstring_view folder, std::wstring_view name) {
    std::wstring path(folder);
    if (!path.ends_with(L'\\') && !path.ends_with(L'/')) path += L'\\';
    return path.append(name);
}

}  // namespace Launcher
