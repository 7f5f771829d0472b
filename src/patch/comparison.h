#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "patch/installed_file.h"
#include "patch/update_list.h"

namespace Launcher {

/// Which files of a list have to be fetched.
struct Comparison {
    std::vector<std::uint32_t> queue;  ///< indices into the list, in its order
    std::uint64_t bytesTotal = 0;      ///< their sizes as the list tells them
};

/// local stands entry for entry beside remote; nothing there means a missing file. A file is up to
/// date when its hash in decimal is the list's text and its size the list's; time stamps play no
/// part. Pure.
Comparison CompareLists(std::span<const ManifestEntry> remote,
                        std::span<const std::optional<InstalledFile>> local);

}  // namespace Launcher
