#pragma once

#include <string>
#include <vector>

/// The search for a lost game, and the relink to a folder. Main thread.
namespace Launcher {

/// Looks for copies of the game from the start; nothing while a search is on.
void StartCopySearch();
void CancelCopySearch();
bool IsSearchingCopies();
/// The folder that is being looked at.
std::wstring SearchedFolder();
/// What was found since the last call.
std::vector<std::wstring> TakeFoundCopies();

/// Makes the folder the game's. With deleteOthers the other copies go.
void BeginRelink(const std::wstring& folder, bool deleteOthers, std::vector<std::wstring> others);

/// The folder is being made the game's.
bool IsRelinking();

/// Looks how both go. Every tick.
void FollowRelink();
/// How many copies the last relink has deleted.
std::size_t DeletedCopies();

/// Cancels the search, and waits for both: the teardown.
void StopRelink();

}  // namespace Launcher
