#pragma once

#include <string>
#include <vector>

#include "install/folder_move.h"

/// Brings the install record and the folder on disk together: the worker bodies behind the relocate
/// and the not-found page. They run on a thread of their own, which needs nothing prepared.
namespace Launcher {

/// The relocate page's path, normalised; with ownFolder the game's name is appended, unless that
/// is what it ends in, whatever its case.
std::wstring ResolveRelocateTarget(const std::wstring& text, bool ownFolder);

/// Points the registered entry and both links at the folder. The launcher is placed where it is
/// missing, and the links are made whether they were there or not.
void RenewInstallRecord(const std::wstring& folder);

/// Moves the game folder, and its records with it. On LeftBehind the records point at the copy
/// although the answer is false.
[[nodiscard]] bool MoveInstallation(const std::wstring& source, const std::wstring& destination,
                                    const MoveHooks& hooks, MoveResult& result);

/// A move that was cut short may leave the registered folder without a game. Puts the game back
/// where it was on its way into itself, or else points the records at where it was on its way to.
/// Once, at start-up.
void RecoverInterruptedMove();

/// Points the entry at a folder that the player has shown or the search has found. With
/// deleteOthers the other copies go, as far as each is a game with its data, nothing runs from it,
/// and it lies neither around nor in the folder or this program's own one. Returns how many went
/// completely.
std::size_t RelinkInstallation(const std::wstring& folder, bool deleteOthers,
                               const std::vector<std::wstring>& others);

}  // namespace Launcher
