#pragma once

#include <string_view>

/// The boot log: one file, "launcher_boot.log", beside the executable, made anew at each start.
/// Every line carries the milliseconds since the start and the id of its thread, and is out of this
/// process before the call returns, so that the last one survives a crash or a hang. No failure is
/// told: a line that cannot be written still reaches an attached debugger.
namespace Launcher {

/// Remembers the start time. Lines are kept in memory until one of the Open calls says what
/// becomes of them, so that a start which turns out to be only a second one, and never opens the
/// log, leaves the first one's alone. Main thread, before any other thread runs.
void StartBootLog();

/// Makes the file, emptying an old one, and writes the kept lines.
void OpenBootLog();

/// As OpenBootLog, for a process that replaces one: while that one still holds the file the lines
/// go on being kept, and every further line tries again, as does a further call.
void OpenBootLogWhenFree();

/// Writes "[%6llu ms] [tid %lu] text\r\n", at most 511 bytes: a longer text loses its end.
/// Times never run backwards from line to line. Any thread.
void BootLog(std::string_view text);

/// Formats like printf and writes the line. Any thread.
[[gnu::format(printf, 1, 2)]] void BootLogF(const char* format, ...);

/// Later lines reach the debugger only.
void CloseBootLog();

}  // namespace Launcher
