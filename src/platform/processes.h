#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/error.h"

/// Processes of this machine, by their ids. Any thread.
namespace Platform {

struct ProcessStart {
    std::wstring application;    ///< full path
    std::wstring commandLine;    ///< whole line, the quoted program first
    std::wstring workingFolder;  ///< empty: the starter's
    bool hidden = false;         ///< no console or window of its own
};

/// Starts a program that lives on by itself. FileNotFound, PathNotFound, AccessDenied,
/// SharingViolation for a file that somebody writes or keeps for himself, InvalidFolder for the
/// working folder, and BadExecutable for a file that is no program of this machine's architecture.
[[nodiscard]] Error StartProcess(const ProcessStart& start, std::uint32_t& processId);

std::uint32_t OwnProcessId();

/// Ends this process as a kill from outside would: nothing of it runs on.
[[noreturn]] void EndOwnProcess();

struct RunningProcess {
    std::uint32_t id = 0;
    std::wstring fileName;  ///< the program's file name without its folder
};

std::vector<RunningProcess> ListProcesses();

/// Full path of a process's program; empty when it cannot be told.
std::wstring GetProcessImagePath(std::uint32_t processId);

/// True for id 0, for a process that has ended, and for one that cannot be opened.
bool HasProcessEnded(std::uint32_t processId);

/// A visible top-level window without owner of at least 200 by 200 belongs to the process. On the
/// host: one on the X11 display.
bool HasMainWindow(std::uint32_t processId);

/// The process waits for input with nothing left to do. On the host: its main thread sleeps at the
/// moment of the look.
bool IsProcessIdle(std::uint32_t processId);

}  // namespace Platform
