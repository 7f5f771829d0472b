#pragma once

#include "platform/error.h"

namespace Platform::Host {

/// The number that Windows would give for what errno tells; 31 (a device does not work) for what
/// has no near one.
Error ErrorFromErrno(int number);

/// The same for errno as the last call left it.
Error LastError();

}  // namespace Platform::Host
