#pragma once

#include <cstdint>
#include <string>

/// Starting the game client. Main thread.
namespace Launcher {

enum class LaunchStatus : std::int32_t {
    Started = 0,
    NotFound = 1,
    WrongArchitecture = 2,
    AccessDenied = 3,
    Other = 4,
};

struct LaunchResult {
    LaunchStatus status = LaunchStatus::Other;
    std::wstring text;      ///< the client's path when it started, otherwise a message
    std::uint32_t pid = 0;  ///< 0 when it did not start
};

/// Starts the folder's client with its quoted path as the only argument and the folder as its
/// working folder. Nothing can replace the file between the check and the start.
LaunchResult LaunchClient(const std::wstring& folder);

}  // namespace Launcher
