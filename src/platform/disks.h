#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/error.h"

namespace Platform {

struct DiskSpace {
    std::uint64_t freeBytes = 0;   ///< free to this user
    std::uint64_t totalBytes = 0;  ///< size of the volume
};

/// root is a drive's root, as "C:\".
[[nodiscard]] Error GetDiskSpace(const std::wstring& root, DiskSpace& space);

/// The fixed drives (no network, no removable ones), as "C:", from A to Z.
std::vector<std::wstring> ListFixedDrives();

}  // namespace Platform
