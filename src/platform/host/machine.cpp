#include "platform/host/machine.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/text.h"

namespace Platform::Host {

namespace {

// Parents before what they hold. "run" is made last: where it stands, all the rest does.
constexpr const char* Layout[] = {
    "drive_c",
    "drive_c/Program Files",
    "drive_c/Program Files/Common Files",
    "drive_c/Program Files (x86)",
    "drive_c/ProgramData",
    "drive_c/Users",
    "drive_c/Users/Player",
    "drive_c/Users/Player/AppData",
    "drive_c/Users/Player/AppData/Local",
    "drive_c/Users/Player/AppData/Local/Temp",
    "drive_c/Users/Player/AppData/Roaming",
    "drive_c/Users/Player/AppData/Roaming/Microsoft",
    "drive_c/Users/Player/AppData/Roaming/Microsoft/Windows",
    "drive_c/Users/Player/AppData/Roaming/Microsoft/Windows/Start Menu",
    "drive_c/Users/Player/AppData/Roaming/Microsoft/Windows/Start Menu/Programs",
    "drive_c/Users/Player/Desktop",
    "drive_c/Users/Player/Documents",
    "drive_c/Windows",
    "drive_c/Windows/System32",
    "drive_c/Windows/SysWOW64",
    "run",
};

[[noreturn]] void Refuse(const char* what, const char* folder) {
    std::fprintf(stderr, "tolvan: %s%s\n", what, folder);
    std::_Exit(2);
}

void MakeFolderWithParents(const std::string& folder) {
    for (std::size_t end = folder.find('/', 1); end != std::string::npos;
         end = folder.find('/', end + 1)) {
        ::mkdir(folder.substr(0, end).c_str(), 0777);
    }
    ::mkdir(folder.c_str(), 0777);
}

struct Machine {
    std::string folder;
    int descriptor = -1;

    Machine() {
        const char* name = std::getenv("TOLVAN_MACHINE");
        if (name == nullptr || *name == '\0') {
            Refuse("the environment variable TOLVAN_MACHINE has to name the machine's folder", "");
        }
        MakeFolderWithParents(name);
        char resolved[PATH_MAX];
        if (::realpath(name, resolved) == nullptr) Refuse("no such machine folder: ", name);
        folder = resolved;
        descriptor = ::open(resolved, O_PATH | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0) Refuse("the machine folder cannot be opened: ", name);
        if (::faccessat(descriptor, "run", F_OK, 0) == 0) return;
        // Every step may find its folder made by another process that starts at the same time.
        for (const char* part : Layout)
            ::mkdirat(descriptor, part, 0777);
        if (::faccessat(descriptor, "run", F_OK, 0) != 0) {
            Refuse("the machine folder cannot be written to: ", name);
        }
    }
};

const Machine& TheMachine() {
    static const Machine machine;
    return machine;
}

constexpr std::string_view DrivePrefix = "drive_";

}  // namespace

const std::string& MachineFolder() {
    return TheMachine().folder;
}

int MachineDescriptor() {
    return TheMachine().descriptor;
}

std::string RunFolder() {
    return MachineFolder() + "/run";
}

std::string RegistryFile() {
    return MachineFolder() + "/registry.sqlite";
}

std::string RebootListFile() {
    return MachineFolder() + "/at_reboot";
}

std::wstring WindowsPathOf(std::string_view hostPath) {
    const std::string& machine = MachineFolder();
    if (!hostPath.starts_with(machine)) return {};
    hostPath.remove_prefix(machine.size());
    if (!hostPath.starts_with('/')) return {};
    hostPath.remove_prefix(1);
    if (!hostPath.starts_with(DrivePrefix)) return {};
    hostPath.remove_prefix(DrivePrefix.size());
    if (hostPath.empty() || hostPath[0] < 'a' || hostPath[0] > 'z') return {};
    if (hostPath.size() > 1 && hostPath[1] != '/') return {};
    std::wstring path(1, static_cast<wchar_t>(hostPath[0] - 'a' + 'A'));
    path += L':';
    path += WideFromUtf8(hostPath.substr(1));
    if (path.size() == 2) path += L'/';
    for (wchar_t& character : path) {
        if (character == L'/') character = L'\\';
    }
    return path;
}

std::wstring WindowsPathOfProgram(std::string_view hostPath) {
    std::wstring path = WindowsPathOf(hostPath);
    if (path.empty() && !hostPath.empty()) {
        path = L"C:\\Program Files (x86)\\Tolvan Tests\\" +
               WideFromUtf8(hostPath.substr(hostPath.rfind('/') + 1));
    }
    return path;
}

}  // namespace Platform::Host
