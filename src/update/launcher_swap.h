#pragma once

#include <optional>
#include <string>

#include "update/self_update.h"

/// The swap of the running launcher's file for a staged one. A running program's file can be
/// renamed, but not overwritten or deleted: so it is moved aside under a numbered old name, and
/// goes at a later start.
///
/// Between the two renames no launcher stands under its name. They stand side by side, with nothing
/// between them that could fail or wait; a kill in just that instant leaves the old launcher under
/// its numbered name and the new one, checked and on the disk, as ".new".
namespace Launcher {

/// Where the newer launcher is staged: beside the running one, as ".new".
std::wstring StagedLauncherPath(const std::wstring& running);

class LauncherSwap {
public:
    explicit LauncherSwap(std::wstring running) : running_(std::move(running)) {}

    /// Moves the running file aside and the staged one into its place. On false everything stands
    /// as before, the staged file too.
    [[nodiscard]] bool Swap();
    /// Takes a swap back.
    void Undo();

private:
    bool MoveAside();
    void RestoreRunning();

    std::wstring running_;
    std::wstring aside_;
};

/// Starts the launcher that stands in the running one's place now.
[[nodiscard]] bool StartSwappedLauncher(const std::wstring& launcher,
                                        std::optional<WindowPosition> position);

}  // namespace Launcher
