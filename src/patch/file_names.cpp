#include "patch/file_names.h"

#include <algorithm>
#include <array>

#include "platform/text.h"

namespace Launcher {
namespace {

constexpr std::wstring_view DeviceNames[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
constexpr std::wstring_view NumberedDevices[] = {L"COM", L"LPT"};
/// The superscripts count as digits here.
constexpr std::wstring_view DeviceNumbers = L"123456789\u00B9\u00B2\u00B3";

/// By character below 128: it cannot stand in a name. Every name of a list is looked at.
constexpr auto Forbidden = [] {
    std::array<bool, 128> forbidden{};
    std::fill_n(forbidden.begin(), L' ', true);
    for (const char character : std::string_view("<>:\"/\\|?*")) {
        forbidden[static_cast<std::size_t>(character)] = true;
    }
    return forbidden;
}();

/// A device keeps its meaning with any extension and with blanks before it.
bool IsDeviceName(std::wstring_view name) {
    std::wstring_view stem = name.substr(0, name.find(L'.'));
    stem = stem.substr(0, stem.find_last_not_of(L' ') + 1);
    const auto isStem = [&](std::wstring_view device) {
        return Platform::EqualIgnoringCase(stem, device);
    };
    if (std::ranges::any_of(DeviceNames, isStem)) return true;
    if (stem.size() != 4 || DeviceNumbers.find(stem.back()) == std::wstring_view::npos)
        return false;
    stem.remove_suffix(1);
    return std::ranges::any_of(NumberedDevices, isStem);
}

}  // namespace

bool IsFileName(std::wstring_view name) {
    const auto cannotStand = [](wchar_t character) {
        const auto code = static_cast<std::size_t>(character);
        return code < Forbidden.size() && Forbidden[code];
    };
    return !name.empty() && name.back() != L'.' && name.back() != L' ' &&
           std::ranges::none_of(name, cannotStand) && !IsDeviceName(name);
}

bool IsPathInsideFolder(std::wstring_view path) {
    int depth = 0;
    while (true) {
        const auto isSeparator = [](wchar_t character) {
            return character == L'/' || character == L'\\';
        };
        const auto end = std::ranges::find_if(path, isSeparator);
        const std::wstring_view part(path.begin(), end);
        if (end == path.end()) return IsFileName(part);
        path = {end + 1, path.end()};

        if (part == L"..") {
            if (--depth < 0) return false;
        } else if (!part.empty() && part != L".") {
            if (!IsFileName(part)) return false;
            ++depth;
        }
    }
}

}  // namespace Launcher
