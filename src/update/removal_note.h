#pragma once

#include <string>

/// A removal that is killed half-way leaves a folder that no record tells of any more. The handoff
/// copy that removes therefore notes what it removes in its working folder, and the next start of a
/// launcher finishes what such a note tells.
namespace Launcher {

/// For a handoff copy, before anything is removed. Without a place for the note there is none, and
/// the removal goes on all the same.
void NoteRemoval(const std::wstring& folder);

/// The removal has come to its end, whichever that was.
void DropRemovalNote();

/// Finishes what the copy whose working folder this was has noted, as long as the very folder of
/// the note stands there and not one that was made since. A folder that is still, or again,
/// registered as the game's is whole, since the records go first: it stays. False when the
/// note has to wait for a later start, because something cannot be deleted yet or this launcher
/// runs from inside; true also without a note. Takes as long as deleting the rest does.
[[nodiscard]] bool FinishNotedRemoval(const std::wstring& workingFolder);

}  // namespace Launcher
