#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Launcher {

/// One file that an install fetches.
struct FileListEntry {
    std::wstring path;       ///< relative, with "/"
    std::uint64_t size = 0;  ///< bytes
};

/// Reads a list of "path=anything TAB size" lines in UTF-8. What has another form is skipped, and
/// so is a name that would leave the folder or that no file can have, and a deletion.
std::vector<FileListEntry> ParseFileList(std::string_view text);

}  // namespace Launcher
