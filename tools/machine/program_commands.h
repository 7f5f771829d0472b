#pragma once

#include <string>
#include <vector>

/// The commands about programs that run on the machine. They throw Failure.
namespace MachineTool {

/// Starts a program in its own folder, waits, and returns its exit code; 128 and the signal's
/// number when it was killed. It has this process's streams, and gets the signals that would end
/// this process.
int RunProgram(std::wstring program, const std::vector<std::string>& arguments);

/// Prints a line for each running program: its process id, a blank and its path.
void PrintPrograms();

/// Kills all that runs on the machine.
void KillPrograms();

}  // namespace MachineTool
