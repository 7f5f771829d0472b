#pragma once

#include <cstdint>

namespace Platform::Host {

/// Whether a window of the process is shown on the X11 display, of at least 200 by 200 and not
/// there for another window. False without a display. Any thread; takes a few milliseconds.
bool HasX11MainWindow(std::uint32_t processId);

}  // namespace Platform::Host
