#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/error.h"

namespace Launcher {

/// What a copy of a tree reports and asks; each may be empty. Called on the copying thread.
struct TreeCopyHooks {
    /// After each file, with its bytes.
    std::function<void(std::uint64_t bytes)> onFile;
    std::function<bool()> isCancelled;
};

/// Copies the folder with everything below it, attributes included, to a place where nothing or a
/// folder stands. What a link leads to is copied as if it stood there, so that the copy is whole by
/// itself; a link behind such a link is left out, since it may lead back, and so is one that leads
/// nowhere. No file is overwritten. Stops at the first failure (Cancelled when it was asked to) and
/// leaves what it has made. failedPath names the place of the failure.
///
/// The shell's own copy engine could do this, but tells nothing while it is at work.
[[nodiscard]] Platform::Error CopyTree(const std::wstring& source, const std::wstring& destination,
                                       const TreeCopyHooks& hooks, std::wstring& failedPath);

/// Whether every file below source stands in destination with the same size. Reparse points are
/// passed over. On false firstMismatch is the file in source that does not.
[[nodiscard]] bool VerifyCopy(const std::wstring& source, const std::wstring& destination,
                              std::wstring& firstMismatch);

}  // namespace Launcher
