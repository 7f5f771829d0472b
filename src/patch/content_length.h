#pragma once

#include <cstdint>

#include "platform/http.h"

namespace Launcher {

/// The body's length as the response's headers tell it; 0 when they do not, or tell nonsense.
std::int64_t ContentLengthOf(const Platform::HttpRequest& request);

}  // namespace Launcher
