#pragma once

#include <string>
#include <vector>

namespace MachineTool {

/// What "reg" understands, for the help.
extern const char* const RegistryUsage;

/// Does what Windows' own reg does with these arguments, on this machine's registry, and writes
/// what it writes. Throws Failure.
void RunRegistryCommand(const std::vector<std::string>& arguments);

}  // namespace MachineTool
