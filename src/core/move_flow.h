#pragma once

#include <cstdint>
#include <string>

#include "core/command_line.h"
#include "install/folder_move.h"

/// The move of the game folder, from the button to its result. Main thread.
namespace Launcher {

enum class MoveState : std::int32_t { None = 0, Moving = 1, Done = 2, Failed = 3 };

/// What the page shows.
struct MoveProgress {
    MoveState state = MoveState::None;
    std::uint64_t bytesDone = 0;  ///< of a copy across drives; 0 for a rename
    std::uint64_t filesDone = 0;
    MoveResult result;  ///< once it is Done or Failed
};

/// The button: moves the game folder to where the text says, into a folder of its own below that
/// with sub. Hands over to a copy when this program lies in the folder.
void BeginMove(const std::wstring& destination, bool sub, WindowPosition position);

/// In the copy: the folder is to itself now.
void ContinueMove(const HandoffArgs& handoff);

/// Looks how it goes. Every tick.
void FollowMove();
MoveProgress GetMoveProgress();

/// Waits for a move to come to its end: the teardown. Half a copy would be in the way of the next.
void StopMove();

}  // namespace Launcher
