#pragma once

#include <windows.h>

#include <optional>

#include "platform/events.h"

namespace Platform::Win32 {

/// The event that a message about the pointer's buttons, the wheel or the keyboard means; none for
/// all other messages.
std::optional<Event> TranslateInput(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace Platform::Win32
