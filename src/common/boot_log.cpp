#include "common/boot_log.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <span>
#include <string>

#include "common/path_text.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr std::size_t LineCapacity = 512;  // with the terminating zero
constexpr std::string_view LineEnd = "\r\n";

enum class Destination { Memory, MemoryUntilFree, File, Nowhere };

struct Log {
    // One lock for the time and the write, so that the lines stand in the order of their times.
    std::mutex lock;
    std::uint64_t startTick = Platform::TickMilliseconds();
    Destination destination = Destination::Nowhere;
    std::string kept;
    Platform::File file;
};

// Never destroyed: other objects of static lifetime may still log when they go.
Log& TheLog() {
    static Log& log = *new Log;
    return log;
}

std::wstring LogPath() {
    const std::wstring folder = FolderOf(Platform::OwnPath());
    return folder.empty() ? folder : JoinPath(folder, L"launcher_boot.log");
}

// A write that fails loses its line: there is no better place to tell it.
void WriteThrough(Platform::File& file, std::string_view text) {
    if (Platform::Succeeded(file.Write(std::as_bytes(std::span(text))))) (void)file.Secure();
}

bool IsUndecided(const Log& log) {
    return log.destination == Destination::Memory ||
           log.destination == Destination::MemoryUntilFree;
}

// The lock is held.
void OpenFile(Log& log, bool retryLater) {
    if (!IsUndecided(log)) return;
    const std::wstring path = LogPath();
    const Platform::OpenOptions options{.access = Platform::AccessWrite,
                                        .sharing = Platform::ShareRead,
                                        .disposition = Platform::Disposition::CreateAlways};
    const Platform::Error error =
        path.empty() ? Platform::Error::FileNotFound : log.file.Open(path, options);
    if (retryLater && error == Platform::Error::SharingViolation) {
        log.destination = Destination::MemoryUntilFree;
        return;
    }
    log.destination = Platform::Succeeded(error) ? Destination::File : Destination::Nowhere;
    if (log.file.IsOpen() && !log.kept.empty()) WriteThrough(log.file, log.kept);
    log.kept = {};
}

}  // namespace

void StartBootLog() {
    Log& log = TheLog();
    const std::lock_guard guard(log.lock);
    log.startTick = Platform::TickMilliseconds();
    log.destination = Destination::Memory;
}

void OpenBootLog() {
    Log& log = TheLog();
    const std::lock_guard guard(log.lock);
    OpenFile(log, false);
}

void OpenBootLogWhenFree() {
    Log& log = TheLog();
    const std::lock_guard guard(log.lock);
    OpenFile(log, true);
}

void BootLog(std::string_view text) {
    Log& log = TheLog();
    const unsigned long thread = Platform::CurrentThreadId();
    const std::lock_guard guard(log.lock);
    const unsigned long long elapsed = Platform::TickMilliseconds() - log.startTick;

    std::array<char, LineCapacity> line;
    const int header =
        std::snprintf(line.data(), line.size(), "[%6llu ms] [tid %lu] ", elapsed, thread);
    const auto start = static_cast<std::size_t>(header);
    const std::size_t length = std::min(text.size(), LineCapacity - 1 - start - LineEnd.size());
    char* end = std::copy_n(text.data(), length, line.data() + start);
    end = std::copy(LineEnd.begin(), LineEnd.end(), end);
    *end = '\0';

    Platform::WriteToDebugger(line.data());
    const std::string_view whole(line.data(), end);
    if (log.destination == Destination::MemoryUntilFree) OpenFile(log, true);
    switch (log.destination) {
        case Destination::Memory:
        case Destination::MemoryUntilFree:
            log.kept += whole;
            break;
        case Destination::File:
            WriteThrough(log.file, whole);
            break;
        case Destination::Nowhere:
            break;
    }
}

void BootLogF(const char* format, ...) {
    std::array<char, LineCapacity> text;
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text.data(), text.size(), format, arguments);
    va_end(arguments);
    if (length > 0) BootLog(text.data());
}

void CloseBootLog() {
    Log& log = TheLog();
    const std::lock_guard guard(log.lock);
    if (log.destination == Destination::MemoryUntilFree) OpenFile(log, true);
    log.file.Close();
    log.kept = {};
    log.destination = Destination::Nowhere;
}

}  // namespace Launcher
