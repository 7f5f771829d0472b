#pragma once

#include "core/command_line.h"

namespace Launcher {

/// In a developer build, presses the buttons that the lines of a file name, as they come in, for
/// scripts and tests. TOLVAN_BUTTON_FILE names the file (a Windows path), which may come later; a
/// line is a button and what it takes, separated by tabs, in UTF-8:
///
///     play
///     retry | repair
///     install  FOLDER  LANGUAGE  [desktop]  [startmenu]  [full]
///     install-retry | install-cancel
///     uninstall  [keep]
///     move  FOLDER  [sub]
///     search
///     relink  FOLDER  [OTHER]...
///     close
///
/// move and relink take the place of a page; the copies after relink's folder are deleted. A
/// handoff copy, which has the same environment as its original, begins at the end of the file. A
/// release build has no such code in it. Main thread, once a tick.
void PressButtonsOfFile(double time, const Switches& switches, WindowPosition position);

}  // namespace Launcher
