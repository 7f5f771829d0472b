#pragma once

#include <SDL2/SDL_events.h>
#include <deque>

#include "platform/events.h"

namespace Platform::Host {

/// Appends what an SDL event means for the window to the queue; most events mean nothing, and the
/// pointer's are in x_pointer.h. captured tells that the pointer is held by the window.
void TranslateEvent(const SDL_Event& event, bool captured, std::deque<Event>& queue);

}  // namespace Platform::Host
