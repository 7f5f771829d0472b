#include "patch/comparison.h"

#include <string>

namespace Launcher {
namespace {

bool IsUpToDate(const ManifestEntry& entry, const std::optional<InstalledFile>& installed) {
    return installed && installed->size == entry.size &&
           std::to_string(installed->crc) == entry.hash;
}

}  // namespace

Comparison CompareLists(std::span<const ManifestEntry> remote,
                        std::span<const std::optional<InstalledFile>> local) {
    Comparison comparison;
    for (std::size_t i = 0; i < remote.size(); ++i) {
        if (IsUpToDate(remote[i], local[i])) continue;
        comparison.queue.push_back(static_cast<std::uint32_t>(i));
        comparison.bytesTotal += remote[i].size;
    }
    return comparison;
}

}  // namespace Launcher
