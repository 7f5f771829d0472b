#include "common/state.h"

#include <array>
#include <cstddef>

namespace Launcher {

namespace {

constexpr std::array<const char*, 42> Names = {
    "Boot",
    "SelfRecover",
    "Route",
    "FirstRunLanguage",
    "License",
    "Setup",
    "FolderPicker",
    "Elevate",
    "Install",
    "InstallFailed",
    "InstallDone",
    "Home",
    "Manifest",
    "Parse",
    "Compare",
    "SelfUpdate",
    "ClientBinary",
    "Update",
    "Verify",
    "Ready",
    "PlayOnly",
    "WaitOther",
    "Spawn",
    "SlotFull",
    "Settings",
    "Manage",
    "ManageBroken",
    "AutoDetect",
    nullptr,
    "Move",
    "Relink",
    "Repair",
    "UninstallConfirm",
    "UninstallRun",
    "UninstallDone",
    "ErrNetwork",
    "ErrDownload",
    "ErrFatal",
    "ErrTrust",
    "ErrArch",
    "Halt",
    "Exit",
};

}  // namespace

const char* StateName(State state) {
    const auto index = static_cast<std::size_t>(state);
    return index < Names.size() && Names[index] ? Names[index] : "<unknown>";
}

bool IsPatching(State state) {
    switch (state) {
        case State::Manifest:
        case State::Parse:
        case State::Compare:
        case State::Update:
        case State::Verify:
            return true;
        default:
            return false;
    }
}

}  // namespace Launcher
