#pragma once

#include <string>

/// Defined by a program; the adapter's entry (main on the host, wWinMain on Windows), which is
/// compiled into the program, calls it on the main thread and returns what it returns.
/// commandLine is the raw text behind the program's own name, as the starter gave it.
int ProgramMain(const std::wstring& commandLine);
