#include "install/files_in_use.h"

#include <vector>

#include "common/path_text.h"
#include "platform/files.h"

namespace Launcher {

namespace {

using Platform::Error;

bool IsFree(const std::wstring& path) {
    Platform::File probe;
    const Error error = probe.Open(path, {.access = Platform::AccessDelete, .folder = true});
    return Platform::Succeeded(error) || error == Error::FileNotFound ||
           error == Error::PathNotFound;
}

bool IsTreeFree(const std::wstring& folder, std::wstring& path) {
    std::vector<Platform::FolderEntry> entries;
    const Error listed = Platform::ListFolder(folder, entries);
    if (!Platform::Succeeded(listed) && Platform::PathExists(folder)) {
        path = folder;
        return false;
    }
    for (const Platform::FolderEntry& entry : entries) {
        if (entry.IsReparsePoint()) continue;
        std::wstring found = JoinPath(folder, entry.name);
        if (!IsFree(found)) {
            path = std::move(found);
            return false;
        }
        if (entry.IsFolder() && !IsTreeFree(found, path)) return false;
    }
    return true;
}

}  // namespace

bool FindFileInUse(const std::wstring& folder, std::wstring& path) {
    path.clear();
    Platform::FileInfo info;
    const bool stands = Platform::Succeeded(Platform::GetFileInfo(folder, info));
    if (stands && info.IsReparsePoint()) return true;
    if (!IsFree(folder)) {
        path = folder;
        return false;
    }
    return !stands || IsTreeFree(folder, path);
}

}  // namespace Launcher
