#pragma once

#include <functional>
#include <string>

#include "patch/old_copies.h"

namespace Launcher {

/// A rename in one step that replaces a file at the target; false when it fails.
using Rename = std::function<bool(const std::wstring& from, const std::wstring& to)>;

bool RenameOnDisk(const std::wstring& from, const std::wstring& to);

/// Puts a finished file at its place. Where the system lets it be replaced at once, a kill leaves
/// the old file or the new one. A file in use is moved aside first, if replaceExisting is set, and
/// moved back when its successor still cannot come. rename is for tests.
bool PutInPlace(const std::wstring& partPath, const std::wstring& finalPath, bool replaceExisting,
                OldCopies& oldCopies, const Rename& rename = RenameOnDisk);

}  // namespace Launcher
