#include "install/path_resolution.h"

#include <algorithm>
#include <vector>

#include "platform/text.h"

namespace Launcher {

namespace {

constexpr std::wstring_view DevicePrefixes[] = {L"\\\\?\\", L"\\\\.\\"};
constexpr std::wstring_view DeviceNetwork = L"UNC\\";

bool IsDriveLetter(wchar_t character) {
    return (character >= L'A' && character <= L'Z') || (character >= L'a' && character <= L'z');
}

/// Takes the next part off the path.
std::wstring_view TakePart(std::wstring_view& path) {
    const std::size_t end = std::min(path.find(L'\\'), path.size());
    const std::wstring_view part = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return part;
}

std::wstring_view AsTheSystemReads(std::wstring_view part) {
    const std::size_t last = part.find_last_not_of(L". ");
    return part.substr(0, last == std::wstring_view::npos ? 0 : last + 1);
}

/// Takes what names the volume off the path; empty when nothing does.
std::wstring TakeRoot(std::wstring_view& path) {
    if (path.size() >= 3 && IsDriveLetter(path[0]) && path[1] == L':' && path[2] == L'\\') {
        const std::wstring_view root = path.substr(0, 2);
        path.remove_prefix(3);
        return std::wstring(root);
    }
    if (!path.starts_with(L"\\\\")) return {};
    path.remove_prefix(2);
    const std::wstring_view server = TakePart(path);
    const std::wstring_view share = TakePart(path);
    if (server.empty() || share.empty()) return {};
    return L"\\\\" + std::wstring(server) + L"\\" + std::wstring(share);
}

}  // namespace

std::wstring ResolvePath(std::wstring_view path) {
    std::wstring text(path);
    std::replace(text.begin(), text.end(), L'/', L'\\');
    for (const std::wstring_view prefix : DevicePrefixes) {
        if (!text.starts_with(prefix)) continue;
        text.erase(0, prefix.size());
        if (text.starts_with(DeviceNetwork)) text.replace(0, DeviceNetwork.size(), L"\\\\");
    }

    std::wstring_view rest = text;
    std::wstring resolved = TakeRoot(rest);
    if (resolved.empty()) return {};
    std::vector<std::wstring_view> parts;
    while (!rest.empty()) {
        const std::wstring_view part = TakePart(rest);
        if (part == L"..") {
            if (parts.empty()) return {};
            parts.pop_back();
        } else if (const std::wstring_view read = AsTheSystemReads(part); !read.empty()) {
            parts.push_back(read);
        }
    }
    for (const std::wstring_view part : parts)
        (resolved += L'\\') += part;
    return resolved;
}

bool IsSameOrInside(std::wstring_view path, std::wstring_view folder) {
    const std::wstring inner = ResolvePath(path);
    const std::wstring outer = ResolvePath(folder);
    if (inner.empty() || outer.empty() || inner.size() < outer.size()) return false;
    return Platform::EqualIgnoringCase(std::wstring_view(inner).substr(0, outer.size()), outer) &&
           (inner.size() == outer.size() || inner[outer.size()] == L'\\');
}

}  // namespace Launcher
