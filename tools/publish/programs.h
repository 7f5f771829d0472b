#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/executable_image.h"

namespace Publish {

/// The three programs, which each have an address and an answer of the updater.
struct Program {
    std::string_view option;  ///< of the command line
    std::string_view path;    ///< in the served tree
    std::string_view answer;  ///< in the served tree: the answer of scripts/updater.php
    std::uint16_t machine;    ///< which it must be made for; 0 for any
    bool isLauncher;          ///< which must be marked as one, and a client must not
};

inline constexpr std::array Programs = {
    Program{"--client-x64", "patcher/Tolvan Online_x64.exe", "scripts/updater/client_x64.txt",
            Platform::MachineX64, false},
    Program{"--client-x86", "patcher/Tolvan Online_x86.exe", "scripts/updater/client_x86.txt",
            Platform::MachineX86, false},
    Program{"--launcher", "downloads/Tolvan Online.exe", "scripts/updater/launcher.txt", 0, true},
};

/// The program that is published at this path; null for any other path.
const Program* FindProgram(std::string_view path);

/// Why launchers would refuse this file as that program; empty when they would take it.
std::string_view ProblemWithProgram(const Program& program, const std::filesystem::path& file);

}  // namespace Publish
