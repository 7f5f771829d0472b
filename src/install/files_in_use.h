#pragma once

#include <string>

namespace Launcher {

/// Asks of the folder and of everything below it whether it could be deleted or renamed now. True
/// when all of it could, and then path is empty; otherwise path is the first thing that could not.
/// What has gone is free, and a reparse point is not looked at: it goes as itself. Nothing is
/// changed. A running program is no obstacle here; RunningClients (game_client.h) tells those.
/// Takes the time of one open a file. Any thread.
[[nodiscard]] bool FindFileInUse(const std::wstring& folder, std::wstring& path);

}  // namespace Launcher
