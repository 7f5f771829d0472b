#pragma once

#include "platform/error.h"

/// The system's component services (shell links, clipboard, drag and drop) for the calling thread.
/// The host has none and answers with success.
namespace Platform {

[[nodiscard]] Error InitialiseOle();
/// Harmless without a successful InitialiseOle before it.
void UninitialiseOle();

}  // namespace Platform
