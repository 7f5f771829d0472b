#include "install/folder_tree.h"

#include <algorithm>
#include <vector>

#include "common/path_text.h"
#include "install/path_resolution.h"
#include "install/path_rules.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace Launcher {

namespace {

/// A folder whose last handle is just being closed (an indexer, a virus scanner) goes a little
/// later: so often, and with such pauses, is its removal tried.
constexpr int RemoveTries = 10;
constexpr std::uint32_t RemovePauseMilliseconds = 60;

std::vector<Platform::FolderEntry> List(const std::wstring& folder) {
    std::vector<Platform::FolderEntry> entries;
    // A folder that cannot be read counts as empty: none of the walks reports an error.
    if (!Platform::Succeeded(Platform::ListFolder(folder, entries))) entries.clear();
    return entries;
}

void ClearAttributes(const std::wstring& path) {
    // Should it fail, the deletion that follows fails too and is counted there.
    (void)Platform::ChangeAttributes(path, Platform::AttributeNormal);
}

bool DeleteTree(const std::wstring& folder, const std::function<void()>& onFile);

bool RemoveFileAtAnyRate(const std::wstring& path) {
    // Most files need no more than this; only the read-only attribute stands in the way.
    const Platform::Error error = Platform::RemoveFile(path);
    if (error != Platform::Error::AccessDenied) return Platform::Succeeded(error);
    ClearAttributes(path);
    return Platform::Succeeded(Platform::RemoveFile(path));
}

bool RemoveEntry(const std::wstring& path, const Platform::FolderEntry& entry,
                 const std::function<void()>& onFile) {
    if (entry.IsFolder() && !entry.IsReparsePoint()) return DeleteTree(path, onFile);
    if (entry.IsFolder()) {
        ClearAttributes(path);
        return Platform::Succeeded(Platform::RemoveEmptyFolder(path));
    }
    const bool removed = RemoveFileAtAnyRate(path);
    if (onFile) onFile();
    return removed;
}

/// Not to be called but behind the guard of RemoveInstallFolder.
bool DeleteTree(const std::wstring& folder, const std::function<void()>& onFile) {
    bool complete = true;
    for (const Platform::FolderEntry& entry : List(folder)) {
        if (!RemoveEntry(folder + L"\\" + entry.name, entry, onFile)) complete = false;
    }
    ClearAttributes(folder);
    for (int tries = 0; tries < RemoveTries; ++tries) {
        if (tries > 0) Platform::SleepMilliseconds(RemovePauseMilliseconds);
        const Platform::Error error = Platform::RemoveEmptyFolder(folder);
        if (Platform::Succeeded(error)) return true;
        if (!Platform::PathExists(folder)) break;
    }
    return complete && !Platform::PathExists(folder);
}

bool IsReparsePoint(const std::wstring& path) {
    Platform::FileInfo info;
    return Platform::Succeeded(Platform::GetFileInfo(path, info)) && info.IsReparsePoint();
}

/// The path as it is written and, where something stands there, as it is without links, short names
/// and substituted drives.
std::vector<std::wstring> WaysToWrite(const std::wstring& path) {
    std::vector<std::wstring> ways{ResolvePath(path)};
    std::wstring final;
    if (Platform::Succeeded(Platform::GetFinalPath(path, final))) {
        ways.push_back(ResolvePath(final));
    }
    return ways;
}

/// The folder must not go as a whole itself, or a place that must stay lies in it.
bool HoldsWhatMustStay(const std::wstring& folder) {
    if (!IsSafeFolder(folder)) return true;
    std::vector<std::wstring> places{FolderOf(Platform::OwnPath())};
    for (const Platform::ShellFolder known : SystemFolders)
        places.push_back(Platform::GetShellFolder(known));
    for (const std::wstring& place : places) {
        if (place.empty()) continue;
        for (const std::wstring& way : WaysToWrite(place)) {
            if (IsSameOrInside(way, folder)) return true;
        }
    }
    return false;
}

}  // namespace

void FolderStat(const std::wstring& folder, std::uint64_t& bytes, std::uint64_t& files) {
    for (const Platform::FolderEntry& entry : List(folder)) {
        if (entry.IsReparsePoint()) continue;
        if (entry.IsFolder()) {
            FolderStat(folder + L"\\" + entry.name, bytes, files);
        } else {
            bytes += entry.size;
            ++files;
        }
    }
}

int CountFiles(const std::wstring& folder, int limit) {
    int count = 0;
    for (const Platform::FolderEntry& entry : List(folder)) {
        if (count >= limit) break;
        if (entry.IsReparsePoint()) continue;
        count += entry.IsFolder() ? CountFiles(folder + L"\\" + entry.name, limit - count) : 1;
    }
    return count;
}

bool IsProtectedFromDeletion(const std::wstring& folder) {
    if (!IsSafeFolder(folder)) return true;
    std::vector<std::wstring> ways = WaysToWrite(folder);
    // Of a link only the link goes, not what it leads to.
    if (IsReparsePoint(folder)) ways.resize(1);
    return std::any_of(ways.begin(), ways.end(), HoldsWhatMustStay);
}

bool RemoveInstallFolder(const std::wstring& folder, const std::function<void()>& onFile) {
    if (IsProtectedFromDeletion(folder)) return false;
    const std::wstring root = WithoutTrailingSeparators(folder, 3);
    if (IsReparsePoint(root)) return Platform::Succeeded(Platform::RemoveEmptyFolder(root));
    return DeleteTree(root, onFile);
}

}  // namespace Launcher
