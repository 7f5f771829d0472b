#include "core/client_launch.h"

#include "install/game_client.h"
#include "platform/files.h"
#include "platform/processes.h"

namespace Launcher {

namespace {

LaunchResult Failure(LaunchStatus status, std::wstring text) {
    return {.status = status, .text = std::move(text), .pid = 0};
}

LaunchResult FailedStart(Platform::Error error) {
    switch (error) {
        case Platform::Error::FileNotFound:
        case Platform::Error::PathNotFound:
            return Failure(LaunchStatus::NotFound,
                           L"The game client disappeared before it could be started.");
        case Platform::Error::AccessDenied:
            return Failure(LaunchStatus::AccessDenied,
                           L"The game client could not be started: access denied.");
        case Platform::Error::BadExecutable:
            return Failure(LaunchStatus::WrongArchitecture,
                           L"The game client is not runnable on this system (wrong architecture).");
        default:
            return Failure(LaunchStatus::Other, L"The game client could not be started (error " +
                                                    std::to_wstring(Platform::Code(error)) + L").");
    }
}

}  // namespace

LaunchResult LaunchClient(const std::wstring& folder) {
    const std::wstring client = FindClient(folder);
    if (client.empty()) {
        return Failure(LaunchStatus::NotFound, L"The game client could not be found in " + folder);
    }
    Platform::File held;
    const Platform::Error opened = held.Open(client, {.sharing = Platform::ShareRead});
    if (!Platform::Succeeded(opened)) {
        return Failure(opened == Platform::Error::AccessDenied ? LaunchStatus::AccessDenied
                                                               : LaunchStatus::Other,
                       L"The game client could not be opened (error " +
                           std::to_wstring(Platform::Code(opened)) + L")");
    }
    LaunchResult result{.status = LaunchStatus::Started, .text = client};
    const Platform::Error started = Platform::StartProcess(
        {.application = client, .commandLine = L"\"" + client + L"\"", .workingFolder = folder},
        result.pid);
    return Platform::Succeeded(started) ? result : FailedStart(started);
}

}  // namespace Launcher
