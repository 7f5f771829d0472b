#pragma once

#include <string>

namespace Platform::Host {

/// The folder that relative paths of this process count from, as machine-relative text
/// ("drive_c/Games"). At the start it is the process's working folder, or the root of C: where that
/// lies outside the machine. Any thread.
std::string CurrentFolder();

}  // namespace Platform::Host
