#pragma once

#include "platform/host/lookup.h"

namespace Platform::Host {

/// True when something in the folder, at any depth, is open or is a running program: Windows does
/// not rename such a folder.
bool IsAnyOpenBelow(const Place& folder);

}  // namespace Platform::Host
