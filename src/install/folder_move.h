#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// Moves a game folder. On one drive that is a rename; across drives a copy, a check of the copy,
/// and the removal of the old folder.
namespace Launcher {

enum class MoveCode : std::uint32_t {
    None = 0,
    Refused = 1,       ///< nothing was touched
    RenameFailed = 2,  ///< everything stands where it stood
    CopyFailed = 3,    ///< the old folder is whole; part of a copy stands at the destination
    CheckFailed = 4,   ///< the old folder is whole; the copy is not
    LeftBehind = 5,    ///< the copy is whole; the old folder could not be removed
};

struct MoveResult {
    MoveCode code = MoveCode::None;
    bool renamed = false;          ///< it took a single rename
    std::wstring blockingPath;     ///< Refused: what is in use
    std::wstring copyMismatch;     ///< CheckFailed: the first file that is not the same
    std::wstring leftoverFolder;   ///< the old folder, when it stayed behind
    std::uint32_t win32Error = 0;  ///< of the failed rename
    std::uint32_t copyResult = 0;  ///< error of the failed copy
    bool copyAborted = false;      ///< the copy was cancelled
    std::uint64_t bytes = 0;       ///< size of the folder
    std::uint64_t files = 0;
};

/// Each may be empty; called on the moving thread.
struct MoveHooks {
    /// The folder is whole at the destination: the records are to point there now. It comes before
    /// anything of an old copy goes, so that at no instant they point at a folder that is not
    /// whole.
    std::function<void()> onStanding;
    /// While files are copied, of the result's bytes and files.
    std::function<void(std::uint64_t bytes, std::uint64_t files)> onProgress;
    /// Asked between two files of a copy.
    std::function<bool()> isCancelled;
};

/// Both are full paths. True when the folder stands at the destination and all went as wished. An
/// empty folder at the destination is taken; one that holds something is RenameFailed with the
/// error 183. A source that may not be removed (RemoveInstallFolder) is copied and stays, which is
/// told in leftoverFolder and no failure. Any thread; it runs as long as a copy takes.
[[nodiscard]] bool MoveInstallFolder(const std::wstring& source, const std::wstring& destination,
                                     const MoveHooks& hooks, MoveResult& result);

/// A move of a folder into itself that was cut short between its two renames leaves the folder
/// beside its old place, under a temporary name. Puts it back when nothing but empty folders stands
/// at that place.
void PutBackInterruptedMove(const std::wstring& installFolder);

}  // namespace Launcher
