#include "platform/host/program_start.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "platform/executable_image.h"
#include "platform/files.h"
#include "platform/host/command_line.h"
#include "platform/host/descriptor.h"
#include "platform/host/errors.h"
#include "platform/host/machine.h"
#include "platform/text.h"

namespace Platform::Host {

namespace {

/// The machine that programs have to be made for: this program's own.
std::uint16_t OwnMachine() {
    static const std::uint16_t machine = [] {
        const Descriptor file(open("/proc/self/exe", O_RDONLY | O_CLOEXEC));
        return ReadElfMachine([&](std::uint64_t offset, std::span<std::byte> buffer) {
            const ssize_t got =
                pread(file.Get(), buffer.data(), buffer.size(), static_cast<off_t>(offset));
            return got < 0 ? std::size_t{0} : static_cast<std::size_t>(got);
        });
    }();
    return machine;
}

/// Another thread that starts a program at this moment may hold a copy of a descriptor through
/// which this program's file was written, until its own child runs.
constexpr auto LongestBusyWait = std::chrono::milliseconds(200);

/// A vector of pointers to the texts, ended by a null one, as the system wants it.
std::vector<char*> PointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> MakeEnvironment(const std::string& commandLine) {
    const std::string prefix = std::string(CommandLineVariable) + '=';
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (std::string_view(*variable).starts_with(prefix)) continue;
        variables.emplace_back(*variable);
    }
    variables.push_back(prefix + commandLine);
    return variables;
}

/// How the child differs from its parent before it becomes the program.
class SpawnSetup {
public:
    SpawnSetup(const StandardStreams& streams, const std::string& folder) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
        const int given[] = {streams.input, streams.output, streams.error};
        for (int standard = 0; standard < 3; ++standard) {
            if (given[standard] < 0) continue;
            posix_spawn_file_actions_adddup2(&actions_, given[standard], standard);
        }
        // Libraries open descriptors that would go along, and hold their other ends open with them.
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes_, &none);
        sigset_t ignored;
        sigemptyset(&ignored);
        sigaddset(&ignored, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes_, &ignored);
        posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSetup() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    int Spawn(const std::string& program, char** arguments, char** environment,
              pid_t& child) const {
        return posix_spawn(&child, program.c_str(), &actions_, &attributes_, arguments,
                           environment);
    }

private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

/// Windows knows no executable bit, so a file that was copied into the machine may lack it.
void MakeExecutable(const std::string& program) {
    struct stat status {};
    if (stat(program.c_str(), &status) != 0 || (status.st_mode & S_IXUSR) != 0) return;
    // Who may read may run; where this fails the start tells.
    static_cast<void>(chmod(program.c_str(), status.st_mode | ((status.st_mode & 0444) >> 2)));
}

Error FindFolder(const std::wstring& folder, std::string& hostPath) {
    hostPath.clear();
    if (folder.empty()) return Error::None;
    if (!IsExistingFolder(folder)) return Error::InvalidFolder;
    hostPath = HostPathOf(folder);
    return Error::None;
}

}  // namespace

Error StartProgram(const ProcessStart& start, const StandardStreams& streams, pid_t& child) {
    // Open until the program runs, so that nobody replaces the file that was looked at.
    File file;
    const Error opened = file.Open(start.application, {.sharing = ShareRead | ShareDelete});
    if (!Succeeded(opened)) return opened;
    if (ReadElfMachine(ReadFrom(file)) != OwnMachine()) return Error::BadExecutable;
    std::string folder;
    const Error found = FindFolder(start.workingFolder, folder);
    if (!Succeeded(found)) return found;
    const std::string program = HostPathOf(start.application);
    MakeExecutable(program);

    const std::string line = Utf8FromWide(
        start.commandLine.empty() ? L'"' + start.application + L'"' : start.commandLine);
    std::vector<std::string> arguments = SplitCommandLine(line);
    std::vector<std::string> environment = MakeEnvironment(line);
    const std::vector<char*> argumentPointers = PointersTo(arguments);
    const std::vector<char*> environmentPointers = PointersTo(environment);
    const SpawnSetup setup(streams, folder);
    const auto end = std::chrono::steady_clock::now() + LongestBusyWait;
    for (;;) {
        const int result = setup.Spawn(program, const_cast<char**>(argumentPointers.data()),
                                       const_cast<char**>(environmentPointers.data()), child);
        if (result == 0) return Error::None;
        if (result != ETXTBSY || std::chrono::steady_clock::now() >= end) {
            return ErrorFromErrno(result);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace Platform::Host
