#pragma once

#include <SDL2/SDL_events.h>
#include <SDL2/SDL_video.h>
#include <cstdint>
#include <deque>

#include "platform/events.h"

/// The pointer, as X tells of it. SDL has a picture of its own, which a program that is slow to
/// look makes wrong: it answers a late "entered" by ending every grab of the pointer, so that a
/// drag loses its release, and where it has not seen a move it puts a press in the old place.
namespace Platform::Host {

/// The buttons of an Event that are down in a state of X's.
std::uint8_t HeldButtons(unsigned state);

/// Lets SDL pass on what X says, and hides from it that the pointer enters the window.
void TakePointer(SDL_Window* window);

/// Appends what an event passed on by SDL says of the pointer over the window to the queue.
/// captured tells that the window holds the pointer.
void TranslatePointer(const SDL_Event& event, SDL_Window* window, bool captured,
                      std::deque<Event>& queue);

/// Sends all pointer events to the window until LetPointerGo.
void GrabPointer(SDL_Window* window);
void LetPointerGo(SDL_Window* window);

}  // namespace Platform::Host
