#pragma once

#include <string>

#include "platform/error.h"

/// The removal of a program by itself: what a running program cannot delete is deleted for it once
/// it has ended. Any thread.
namespace Platform {

/// Starts a process of the system's own, without a window, that waits some seconds and then deletes
/// the folder with all below it, as far as nothing in it is in use. It works in no folder that
/// could be in its way.
[[nodiscard]] Error RemoveFolderLater(const std::wstring& folder, unsigned seconds);

/// The file, or the folder once it is empty, goes when the machine starts again. On the host that
/// is "tolvan-machine FOLDER reboot".
[[nodiscard]] Error RemoveAtReboot(const std::wstring& path);

}  // namespace Platform
