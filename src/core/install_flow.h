#pragma once

#include "install/install_stage.h"

/// The install, from the setup page's button to the receipt. Main thread.
namespace Launcher {

/// Makes the options' folder the game's folder and begins to install into it; with noPatch the
/// beginning is only logged.
void BeginInstall(const InstallOptions& options, bool noPatch);

/// The failed install goes on.
void RetryInstall(bool noPatch);

/// Looks whether the install has finished.
void FollowInstall();

}  // namespace Launcher
