#pragma once

#include "directgl/gui.h"
#include "platform/desktop.h"
#include "update/self_update.h"

namespace Launcher {

/// The launcher's window in pixels.
inline constexpr int WindowWidth = 360;
inline constexpr int WindowHeight = 540;

/// Opens the launcher's window, hidden: in the middle of the desktop, without a frame, with round
/// corners, its drawing's alpha shaping it. A request to close it leads to Halt and leaves the
/// window where it is. False when there is no window.
[[nodiscard]] bool CreateLauncherWindow(DirectGL::Gui& gui, Platform::Desktop& desktop);

/// Where the window stands on the screen; the screen's corner without a window.
[[nodiscard]] WindowPosition PositionOf(const DirectGL::Gui& gui);

}  // namespace Launcher
