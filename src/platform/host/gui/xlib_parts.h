#pragma once

#include <SDL2/SDL_video.h>
#include <cstdint>

/// What has to be said to Xlib itself. Its header defines common words as macros, so it is
/// included in this source and x_pointer.cpp alone.
namespace Platform::Host {

/// Xlib ends the program on an error, for instance when somebody has destroyed the window. From now
/// on it does not: who asks for something looks at what came of it.
void KeepRunningOnXErrors();

/// 0 when the window is not one of X11.
std::uint32_t XWindowOf(SDL_Window* window);

/// The descriptor on which the window library's connection becomes readable; -1 when there is none.
int XDescriptorOf(SDL_Window* window);

/// Whether that connection has events that were read already. Costs no call of the system.
bool HasReadXEvents(SDL_Window* window);

}  // namespace Platform::Host
