#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/error.h"

/// Windows path text, turned into the place in the machine's folder that it names.
namespace Platform::Host {

/// Of a path without the prefix "\\?\", in UTF-16 units.
inline constexpr std::size_t LongestPath = 259;
/// Windows keeps room for a short file name in a new folder.
inline constexpr std::size_t LongestFolderToMake = 247;

struct HostPath {
    /// Relative to the machine's folder: "drive_c/Games/x", in UTF-8, with the case as given and
    /// free of ".", ".." and doubled separators.
    std::string text;
    bool namesFolder = false;  ///< it ended in a separator
    bool isLiteral = false;    ///< it began with "\\?\", and may be of any length

    bool IsRoot() const { return text.size() == RootLength; }
    /// The folder that holds what the path names. Not for a root.
    std::string_view Folder() const { return std::string_view(text).substr(0, Cut()); }
    std::string_view Name() const { return std::string_view(text).substr(Cut() + 1); }
    std::string_view Drive() const { return std::string_view(text).substr(0, RootLength); }
    /// UTF-16 units of the whole Windows path.
    std::size_t WindowsLength() const;

    static constexpr std::size_t RootLength = sizeof "drive_c" - 1;

private:
    std::size_t Cut() const { return text.rfind('/'); }
};

/// Knows drives, the current folder, both separators, the names that Windows strips of trailing
/// dots and blanks, and the prefixes "\\?\" and "\\.\". PathNotFound for an empty or too long path,
/// InvalidName for a name that Windows cannot hold or keeps for a device, BadNetworkPath for a
/// share.
[[nodiscard]] Error ParsePath(std::wstring_view path, HostPath& result);

/// True for the machine-relative text of a drive's root or of something on a drive.
bool IsOnDrive(std::string_view text);

}  // namespace Platform::Host
