#pragma once

/// What the launcher has entered in the system for an installed game, and how it is taken out
/// again. What is missing counts as removed by nobody: the answer is false then, and no failure.
namespace Launcher {

/// The settings of game and launcher, both keys.
bool RemoveSettingsKey();

/// The link on the desktop, and the entry of the Start menu with its folder.
bool RemoveShortcuts();

/// The entry under Add or remove programs.
bool RemoveUninstallEntry();

}  // namespace Launcher
