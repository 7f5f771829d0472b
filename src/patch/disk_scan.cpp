#include "patch/disk_scan.h"

#include <algorithm>
#include <deque>

#include "patch/update_list.h"
#include "platform/files.h"
#include "platform/text.h"

namespace Launcher {

DiskScan::DiskScan(const std::wstring& folder) {
    std::deque<std::wstring> waiting{L""};
    while (!waiting.empty()) {
        const std::wstring relative = std::move(waiting.front());
        waiting.pop_front();
        std::vector<Platform::FolderEntry> entries;
        if (!Platform::Succeeded(Platform::ListFolder(folder + relative, entries))) continue;
        for (const Platform::FolderEntry& entry : entries) {
            if (entry.IsReparsePoint()) continue;
            if (entry.IsFolder()) {
                waiting.push_back(relative + entry.name + L"/");
            } else {
                keys_.push_back(Platform::Utf8FromWide(NormalizedKey(relative + entry.name)));
            }
        }
    }
    std::ranges::sort(keys_);
}

bool DiskScan::Contains(std::wstring_view path) const {
    return std::ranges::binary_search(keys_, Platform::Utf8FromWide(NormalizedKey(path)));
}

}  // namespace Launcher
