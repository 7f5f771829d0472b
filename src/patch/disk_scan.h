#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Launcher {

/// The files below a folder at one moment. Kept as UTF-8, since there may be very many.
class DiskScan {
public:
    DiskScan() = default;
    /// Walks the folder breadth first. No reparse point is followed or listed, and a folder that
    /// cannot be read is passed over. folder ends in a separator.
    explicit DiskScan(const std::wstring& folder);

    /// path is relative to the folder; separators and case do not matter.
    bool Contains(std::wstring_view path) const;

private:
    std::vector<std::string> keys_;  ///< NormalizedKey of each file, sorted
};

}  // namespace Launcher
