#include "install/copy_search.h"

#include <algorithm>
#include <array>

#include "common/path_text.h"
#include "platform/disks.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr std::array MarkerFiles{L"Tolvan Online_x64.exe", L"Tolvan Online_x86.exe",
                                 L"Tolvan Online.exe"};
constexpr std::array RootVariables{L"ProgramFiles", L"ProgramFiles(x86)", L"LOCALAPPDATA"};
constexpr int LevelsBelowRoot = 2;

std::vector<std::wstring> SearchRoots() {
    std::vector<std::wstring> roots;
    for (const wchar_t* variable : RootVariables) {
        if (std::wstring value = Platform::GetEnvironmentText(variable); !value.empty()) {
            roots.push_back(std::move(value));
        }
    }
    for (std::wstring& drive : Platform::ListFixedDrives())
        roots.push_back(std::move(drive));
    return roots;
}

bool IsGameCopy(const std::wstring& folder) {
    return std::any_of(MarkerFiles.begin(), MarkerFiles.end(), [&](const wchar_t* name) {
        Platform::FileInfo info;
        return Platform::Succeeded(Platform::GetFileInfo(JoinPath(folder, name), info)) &&
               !info.IsFolder();
    });
}

class CopySearch {
public:
    CopySearch(const std::function<void(const std::wstring&)>& onVisit,
               const std::function<void(const std::wstring&)>& onFound,
               const std::function<bool()>& isCancelled)
        : onVisit_(onVisit), onFound_(onFound), isCancelled_(isCancelled) {}

    void Look(const std::wstring& folder, int levels) {
        if (IsCancelled()) return;
        if (onVisit_) onVisit_(folder);
        if (IsGameCopy(folder)) Add(folder);
        if (levels == 0) return;
        std::vector<Platform::FolderEntry> entries;
        // A drive alone would name its current folder. What cannot be read holds nothing.
        if (!Platform::Succeeded(Platform::ListFolder(folder + L"\\", entries))) return;
        for (const Platform::FolderEntry& entry : entries) {
            if (!entry.IsFolder() || entry.IsReparsePoint()) continue;
            Look(JoinPath(folder, entry.name), levels - 1);
        }
    }

    bool IsCancelled() const { return isCancelled_ && isCancelled_(); }
    std::vector<std::wstring> TakeFound() { return std::move(found_); }

private:
    void Add(const std::wstring& folder) {
        const auto isSame = [&](const std::wstring& known) {
            return Platform::EqualIgnoringCase(known, folder);
        };
        if (std::any_of(found_.begin(), found_.end(), isSame)) return;
        found_.push_back(folder);
        if (onFound_) onFound_(folder);
    }

    const std::function<void(const std::wstring&)>& onVisit_;
    const std::function<void(const std::wstring&)>& onFound_;
    const std::function<bool()>& isCancelled_;
    std::vector<std::wstring> found_;
};

}  // namespace

std::vector<std::wstring> FindInstalledCopies(
    const std::function<void(const std::wstring&)>& onVisit,
    const std::function<void(const std::wstring&)>& onFound,
    const std::function<bool()>& isCancelled) {
    CopySearch search(onVisit, onFound, isCancelled);
    for (const std::wstring& root : SearchRoots())
        search.Look(root, LevelsBelowRoot);
    return search.TakeFound();
}

}  // namespace Launcher
