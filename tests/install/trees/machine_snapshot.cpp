#include "install/trees/machine_snapshot.h"

#include "common/path_text.h"
#include "platform/disks.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "support/links.h"
#include "support/test_files.h"
#include "support/wine.h"

namespace {

using namespace Platform;

void Collect(const std::wstring& folder, Snapshot& snapshot) {
    std::vector<FolderEntry> entries;
    (void)ListFolder(folder, entries);
    for (const FolderEntry& entry : entries) {
        const std::wstring path = Launcher::JoinPath(folder, entry.name);
        if (TestSupport::UnderWine() && EqualIgnoringCase(path, L"C:\\windows")) continue;
        if (entry.IsReparsePoint()) {
            snapshot[path] = "link to " + TestSupport::ReadLinkText(path);
            continue;
        }
        FileInfo info;
        (void)GetFileInfo(path, info);
        snapshot[path] = std::to_string(info.attributes) + ' ' +
                         (entry.IsFolder() ? "folder" : "file " + TestSupport::ReadText(path));
        if (entry.IsFolder()) Collect(path, snapshot);
    }
}

}  // namespace

Snapshot TakeSnapshot() {
    Snapshot snapshot;
    const std::wstring programs = OwnPath().substr(0, 2);
    for (const std::wstring& drive : ListFixedDrives()) {
        if (TestSupport::UnderWine() && drive == programs) continue;
        Collect(drive + L"\\", snapshot);
    }
    return snapshot;
}

Snapshot TakeOut(Snapshot& snapshot, const std::wstring& path) {
    Snapshot taken;
    for (auto entry = snapshot.lower_bound(path);
         entry != snapshot.end() && entry->first.starts_with(path);) {
        const bool belongs =
            entry->first.size() == path.size() || entry->first[path.size()] == L'\\';
        if (!belongs) {
            ++entry;
            continue;
        }
        taken.emplace(entry->first.substr(path.size()), std::move(entry->second));
        entry = snapshot.erase(entry);
    }
    return taken;
}

std::string FirstDifference(const Snapshot& before, const Snapshot& after) {
    for (const auto& [path, content] : before) {
        const auto found = after.find(path);
        if (found == after.end()) return "gone: " + Utf8FromWide(path);
        if (found->second != content) return "changed: " + Utf8FromWide(path);
    }
    for (const auto& [path, content] : after) {
        if (!before.contains(path)) return "came: " + Utf8FromWide(path);
    }
    return {};
}
