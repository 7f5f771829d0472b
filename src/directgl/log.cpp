#include "directgl/log.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace DirectGL {

namespace {

std::mutex g_sinkMutex;
LogSink g_sink;

}  // namespace

void SetLogSink(LogSink sink) {
    const std::lock_guard guard(g_sinkMutex);
    g_sink = std::move(sink);
}

void Log(const char* format, ...) {
    char line[512];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    const std::lock_guard guard(g_sinkMutex);
    if (g_sink)
        g_sink(line);
    else
        std::printf("%s\n", line);
}

void LogFailure(const char* function, int line, Platform::GraphicsResult result) {
    Log("%s:%d  Result Failed 0x%X ", function, line, result);
}

}  // namespace DirectGL
