#include "platform/host/host_path.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utf8.h>

#include "platform/host/current_folder.h"
#include "platform/text.h"

namespace Platform::Host {

namespace {

constexpr std::size_t LongestName = 255;  // UTF-16 units

bool IsSeparator(wchar_t character) {
    return character == L'\\' || character == L'/';
}

bool IsLetter(wchar_t character) {
    return (character >= L'a' && character <= L'z') || (character >= L'A' && character <= L'Z');
}

char LowerLetter(wchar_t letter) {
    return static_cast<char>(letter | 0x20);
}

constexpr std::array<bool, 128> MakeReservedTable() {
    std::array<bool, 128> reserved{};
    for (std::size_t control = 0; control < 0x20; ++control)
        reserved[control] = true;
    for (const char character : std::string_view("<>:\"|?*/\\")) {
        reserved[static_cast<unsigned char>(character)] = true;
    }
    return reserved;
}
constexpr std::array<bool, 128> Reserved = MakeReservedTable();

// "NUL", "nul.txt" and "COM1 .x" all mean the device, in every folder.
bool IsDeviceName(std::wstring_view name) {
    if (name.size() < 3 || std::wstring_view(L"cpanlCPANL").find(name[0]) == name.npos)
        return false;
    name = name.substr(0, name.find(L'.'));
    while (name.ends_with(L' '))
        name.remove_suffix(1);
    if (name.size() == 3) {
        for (const wchar_t* device : {L"con", L"prn", L"aux", L"nul"}) {
            if (EqualIgnoringCase(name, device)) return true;
        }
    }
    return name.size() == 4 && name[3] >= L'1' && name[3] <= L'9' &&
           (EqualIgnoringCase(name.substr(0, 3), L"com") ||
            EqualIgnoringCase(name.substr(0, 3), L"lpt"));
}

std::size_t Utf16Length(std::string_view text) {
    std::size_t length = 0;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        if ((value & 0xC0) != 0x80) length += value >= 0xF0 ? 2 : 1;
    }
    return length;
}

bool AppendCharacters(std::wstring_view name, std::string& text) {
    for (const wchar_t character : name) {
        const auto codePoint = static_cast<char32_t>(character);
        if (codePoint < 0x80) {
            if (Reserved[codePoint]) return false;
            text += static_cast<char>(codePoint);
        } else {
            if ((codePoint >= 0xD800 && codePoint <= 0xDFFF) || codePoint > 0x10FFFF) return false;
            utf8::unchecked::append(codePoint, std::back_inserter(text));
        }
    }
    return true;
}

// What Windows makes of a name in a path: all dots and blanks at the end of the path go, but only
// one dot at the end of a name before it.
std::wstring_view Stripped(std::wstring_view name, bool isLast) {
    if (!isLast) {
        if (name.ends_with(L'.')) name.remove_suffix(1);
        return name;
    }
    while (name.ends_with(L'.') || name.ends_with(L' '))
        name.remove_suffix(1);
    return name;
}

Error AppendName(std::wstring_view name, bool isLast, HostPath& path) {
    if (!path.isLiteral) {
        if (name == L"." || name.empty()) return Error::None;
        if (name == L"..") {
            if (!path.IsRoot()) path.text.resize(path.text.rfind('/'));
            return Error::None;
        }
        name = Stripped(name, isLast);
        if (name.empty() && isLast) return Error::None;
    }
    if (name.empty() || name == L"." || name == L"..") return Error::InvalidName;
    if (IsDeviceName(name)) return Error::InvalidName;
    path.text += '/';
    const std::size_t start = path.text.size();
    if (!AppendCharacters(name, path.text)) return Error::InvalidName;
    const bool fits = path.text.size() - start <= LongestName ||
                      Utf16Length(std::string_view(path.text).substr(start)) <= LongestName;
    return fits ? Error::None : Error::InvalidName;
}

std::string Root(char letter) {
    return std::string("drive_") + letter;
}

// Takes what comes before the first name off the path, and starts the result with the folder that
// the names count from.
Error TakeBase(std::wstring_view& path, HostPath& result) {
    result.isLiteral = path.starts_with(L"\\\\?\\");
    bool needsDrive = result.isLiteral;
    if (!result.isLiteral && path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
        needsDrive =
            path.size() >= 4 && (path[2] == L'.' || path[2] == L'?') && IsSeparator(path[3]);
        if (!needsDrive) return Error::BadNetworkPath;
    }
    if (needsDrive) path.remove_prefix(4);
    const bool hasDrive = path.size() >= 2 && IsLetter(path[0]) && path[1] == L':';
    const auto isSeparator = [&](wchar_t character) {
        return result.isLiteral ? character == L'\\' : IsSeparator(character);
    };
    if (hasDrive) {
        result.text = Root(LowerLetter(path[0]));
        path.remove_prefix(2);
        if (!path.empty() && isSeparator(path[0])) {
            path.remove_prefix(1);
        } else if (needsDrive) {
            return Error::InvalidName;
        } else if (const std::string current = CurrentFolder(); current.starts_with(result.text)) {
            result.text = current;
        }
        return Error::None;
    }
    if (needsDrive) {
        return path.starts_with(L"UNC\\") ? Error::BadNetworkPath : Error::InvalidName;
    }
    result.text = CurrentFolder();
    if (isSeparator(path[0])) {
        result.text.resize(HostPath::RootLength);
        path.remove_prefix(1);
    }
    return Error::None;
}

}  // namespace

std::size_t HostPath::WindowsLength() const {
    const std::size_t length = Utf16Length(text) - RootLength + (sizeof "C:" - 1);
    return IsRoot() ? length + 1 : length;
}

Error ParsePath(std::wstring_view path, HostPath& result) {
    if (path.empty()) return Error::PathNotFound;
    result.text.clear();
    result.text.reserve(path.size() + HostPath::RootLength);
    if (const Error error = TakeBase(path, result); !Succeeded(error)) return error;
    result.namesFolder = !path.empty() && IsSeparator(path.back());
    const wchar_t* separators = result.isLiteral ? L"\\" : L"\\/";
    if (result.isLiteral && path.ends_with(L'\\')) path.remove_suffix(1);
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of(separators), path.size());
        const bool isLast = path.find_first_not_of(separators, end) == path.npos;
        const Error error = AppendName(path.substr(0, end), isLast, result);
        if (!Succeeded(error)) return error;
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    const bool isLong = result.text.size() > LongestPath && result.WindowsLength() > LongestPath;
    return isLong && !result.isLiteral ? Error::PathNotFound : Error::None;
}

bool IsOnDrive(std::string_view text) {
    constexpr std::string_view prefix = "drive_";
    return text.starts_with(prefix) && text.size() > prefix.size() && text[prefix.size()] >= 'a' &&
           text[prefix.size()] <= 'z' &&
           (text.size() == HostPath::RootLength || text[HostPath::RootLength] == '/');
}

}  // namespace Platform::Host
