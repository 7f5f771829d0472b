#pragma once

#include <functional>
#include <string_view>

#include "platform/created.h"

/// The toolkit's own diagnostics. Any thread.
namespace DirectGL {

using LogSink = std::function<void(std::string_view line)>;

/// Takes every later line, without its line end. An empty sink gives back the first one, which
/// writes to standard output.
void SetLogSink(LogSink sink);

[[gnu::format(printf, 1, 2)]] void Log(const char* format, ...);

/// "function:line  Result Failed 0xRESULT ".
void LogFailure(const char* function, int line, Platform::GraphicsResult result);

}  // namespace DirectGL
