#include "patch/file_placement.h"

#include "platform/files.h"

namespace Launcher {

bool RenameOnDisk(const std::wstring& from, const std::wstring& to) {
    return Platform::Succeeded(
        Platform::MovePath(from, to, {.replaceExisting = true, .writeThrough = true}));
}

bool PutInPlace(const std::wstring& partPath, const std::wstring& finalPath, bool replaceExisting,
                OldCopies& oldCopies, const Rename& rename) {
    if (rename(partPath, finalPath)) return true;
    if (!replaceExisting) return false;
    const std::wstring aside = oldCopies.MoveAside(finalPath);
    if (aside.empty()) return false;
    const bool placed = rename(partPath, finalPath);
    // Should both fail, the record tells the next pass where the copy belongs.
    if (placed || rename(aside, finalPath)) oldCopies.Settle(aside);
    return placed;
}

}  // namespace Launcher
