#pragma once

#include <string>

#include "update/self_update.h"

/// The uninstall, from the button to the receipt. Main thread.
namespace Launcher {

/// The folder that an uninstall is about: what a copy was told, else the registered one, else the
/// game folder held if a client lies in it. Empty when there is none.
std::wstring UninstallTarget();

/// The button: hands over to a copy outside of the folder or, in such a copy, removes the game
/// unless something in it is in use. Takes the time of one open a file then.
void BeginUninstall(const std::wstring& target, bool keepSettings, WindowPosition position);

/// Looks how it goes. Every tick.
void FollowUninstall();

/// What the page tells of an uninstall that was refused; empty otherwise.
const std::wstring& UninstallNotice();

}  // namespace Launcher
