#pragma once

#include <string>
#include <vector>

namespace MachineTool {

/// As Windows' own attrib for one file or folder: "+h" and so on set, "-h" and so on clear, and
/// without any the attributes are printed. Letters: r read-only, a archive, s system, h hidden, i
/// not content-indexed. Throws Failure.
void RunAttributeCommand(const std::vector<std::string>& arguments);

}  // namespace MachineTool
