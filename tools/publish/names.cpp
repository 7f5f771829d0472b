#include "names.h"

#include <algorithm>
#include <array>
#include <utf8.h>

#include "patch/file_names.h"
#include "patch/url_path.h"
#include "platform/text.h"

namespace Publish {

namespace {

/// Windows gives a part of a path 255 UTF-16 units, and a whole path 259, of which the folder of
/// the game and the ending of an unfinished download take their share.
constexpr std::size_t LongestPart = 255;
constexpr std::size_t LongestName = 200;
/// An address has 2,083 characters at most; the server's own name takes its share.
constexpr std::size_t LongestAddress = 1'900;

std::size_t Utf16Length(std::wstring_view text) {
    return text.size() + static_cast<std::size_t>(std::ranges::count_if(
                             text, [](wchar_t character) { return character > 0xFFFF; }));
}

/// The launcher deletes, renames or rewrites these in the folder of the game by itself.
bool IsLaunchersOwn(std::wstring_view name) {
    constexpr std::array Own = {L"tolvan online.exe", L".tolvan online.exe", L"launcher_boot.log"};
    const std::wstring key = Platform::LowerCase(name);
    return std::ranges::find(Own, key) != Own.end() || key.starts_with(L"tolvan online.exe.") ||
           (key.starts_with(L"old") && key.find(L'/') == key.npos);
}

bool IsEveryPart(std::wstring_view name, bool (*holds)(std::wstring_view part)) {
    for (;;) {
        const std::size_t slash = name.find(L'/');
        if (!holds(name.substr(0, slash))) return false;
        if (slash == name.npos) return true;
        name.remove_prefix(slash + 1);
    }
}

}  // namespace

std::wstring WindowsKey(std::string_view name) {
    return Platform::LowerCase(Platform::WideFromUtf8(name));
}

std::string_view ProblemWithName(Section section, std::string_view name) {
    if (!utf8::is_valid(name.begin(), name.end())) return "is not UTF-8";
    const std::wstring wide = Platform::WideFromUtf8(name);
    if (name.find("..") != name.npos) return "has \"..\", which the installer drops";
    if (name.find('=') != name.npos) return "has a \"=\", which ends a name in the lists";
    if (!IsEveryPart(wide, Launcher::IsFileName)) return "is no file name on Windows";
    if (!IsEveryPart(wide,
                     [](std::wstring_view part) { return Utf16Length(part) <= LongestPart; })) {
        return "has a part of more than 255 characters";
    }
    if (Utf16Length(wide) > LongestName) return "has more than 200 characters";
    if (Launcher::EncodeUrlPath(wide).size() > LongestAddress) return "is too long for an address";
    if (Platform::LowerCase(wide).ends_with(L".part")) {
        return "ends in \".part\", which is the launcher's mark of an unfinished download";
    }
    if (section == Section::Base && IsLaunchersOwn(wide)) {
        return "is a name that the launcher keeps to itself in the game's folder";
    }
    return {};
}

std::string NameClashes::Add(std::string_view name) {
    for (std::size_t end = 0; end != name.npos;) {
        end = name.find('/', end + 1);
        const std::string_view part = name.substr(0, end);
        const bool isFolder = end != name.npos;
        const auto [entry, isNew] =
            known_.try_emplace(WindowsKey(part), Known{std::string(part), isFolder});
        const Known& known = entry->second;
        if (isNew || (known.spelling == part && known.isFolder && isFolder)) continue;
        return known.spelling;
    }
    return {};
}

}  // namespace Publish
