#pragma once

#include <cstdint>
#include <string>

#include "update/self_update.h"

/// Leaving the game folder: a running program's file cannot be deleted, so the launcher starts a
/// copy of itself from a working folder below the temporary one, and the copy does the work once
/// the original has gone.
namespace Launcher {

enum class HandoffOperation : std::int32_t { None = 0, Uninstall = 1, Move = 2 };

/// What the copy is to do.
struct HandoffRequest {
    HandoffOperation op = HandoffOperation::None;
    std::wstring target;  ///< the game folder
    std::wstring dest;    ///< for a move: where to
    bool keepSettings = false;
    bool sub = true;  ///< for a move: into a folder of its own below dest
    WindowPosition position;
};

/// The text in quotation marks, which no path can hold.
std::wstring QuoteArgument(const std::wstring& text);

/// The whole command line of the copy.
std::wstring HandoffCommandLine(const std::wstring& copy, const HandoffRequest& request,
                                std::uint32_t originalId);

/// Makes this process's working folder, copies the running program to it and starts the copy. A
/// working folder of that name that this process did not make is emptied first. On false errorText
/// says why in words. Takes the time of copying the program. One thread at a time.
[[nodiscard]] bool SpawnHandoff(const HandoffRequest& request, std::wstring& errorText);

/// This process is such a copy: that is told by the name of its folder alone.
bool IsHandoffCopy();

/// Deletes what copies of earlier runs have left, apart from folders that a process runs from, and
/// finishes what they were removing when they were cut off. Once, at start-up.
void PurgeOldWorkingFolders();

/// Has a copy's working folder removed once this process has ended. For the very end of a run; does
/// nothing unless this is a copy.
void ScheduleSelfRemoval();

}  // namespace Launcher
