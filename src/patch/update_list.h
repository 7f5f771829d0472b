#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The update list: UTF-8 text, a record a line. "name=hash TAB size" is a file below "Data/", with
/// the CRC-32 in decimal; "deleted:name" tells of a file that is no longer part of the game.
/// Pure functions; a line that cannot be read is no error.
namespace Launcher {

/// What every path from a list begins with.
inline constexpr std::wstring_view DataFolder = L"Data/";

/// One file of the list.
struct ManifestEntry {
    std::wstring path;       ///< relative to the install folder, begins with DataFolder
    std::string hash;        ///< CRC-32 in unsigned decimal, as the list has it
    std::uint32_t size = 0;  ///< bytes on disk, the wrapper included
};

/// Without the CR, LF and blanks at its end and the CR and LF at its beginning. Tabs stay.
std::string_view TrimLine(std::string_view line);

/// The file that a line tells of. Nothing for an empty line, for one without "=" or with nothing
/// behind it, and for a deletion: what was dropped from the game stays on disk. Neither name nor
/// hash is checked; a missing or senseless size is 0, one beyond 32 bits is the largest.
std::optional<ManifestEntry> ParseLine(std::string_view line);

/// For comparing paths: "/" for "\", in lower case.
std::wstring NormalizedKey(std::wstring_view path);

}  // namespace Launcher
