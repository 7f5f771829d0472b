#include "platform/processes.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/host/descriptor.h"
#include "platform/host/machine.h"
#include "platform/host/program_start.h"
#include "platform/host/x11_windows.h"
#include "platform/steps.h"

namespace Platform {

namespace {

using Host::Descriptor;

/// The programs that this process started. The system keeps an ended one until its starter has
/// looked, so every call here looks.
class Children {
public:
    void Add(pid_t child) {
        const std::lock_guard lock(mutex_);
        children_.push_back(child);
    }
    void Reap() {
        const std::lock_guard lock(mutex_);
        std::erase_if(children_, [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; });
    }

private:
    std::mutex mutex_;
    std::vector<pid_t> children_;
};

Children& OwnChildren() {
    static Children children;
    return children;
}

std::string ProcFile(std::string_view process, const char* name) {
    return "/proc/" + std::string(process) + '/' + name;
}

/// The path of a process's program; empty for one that has ended or belongs to somebody else.
std::string ReadImageLink(std::string_view process) {
    constexpr std::string_view DeletedSuffix = " (deleted)";
    char target[PATH_MAX];
    const ssize_t size = readlink(ProcFile(process, "exe").c_str(), target, sizeof target);
    if (size <= 0) return {};
    std::string path(target, static_cast<std::size_t>(size));
    if (path.ends_with(DeletedSuffix)) path.resize(path.size() - DeletedSuffix.size());
    return path;
}

std::wstring ReadImagePath(std::uint32_t processId) {
    const std::string path = ReadImageLink(std::to_string(processId));
    // Only this process may lie outside its machine.
    return processId == OwnProcessId() ? Host::WindowsPathOfProgram(path)
                                       : Host::WindowsPathOf(path);
}

}  // namespace

Error StartProcess(const ProcessStart& start, std::uint32_t& processId) {
    CountStep("start", start.application);
    OwnChildren().Reap();
    const Descriptor nothing(open("/dev/null", O_RDONLY | O_CLOEXEC));
    // What programs say is kept for whoever looks for the reason of a failure.
    const Descriptor output(open((Host::RunFolder() + "/output.log").c_str(),
                                 O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    pid_t child = 0;
    const Error error =
        Host::StartProgram(start, {nothing.Get(), output.Get(), output.Get()}, child);
    if (!Succeeded(error)) return error;
    OwnChildren().Add(child);
    processId = static_cast<std::uint32_t>(child);
    return Error::None;
}

[[noreturn]] void EndOwnProcess() {
    for (;;)
        raise(SIGKILL);
}

std::uint32_t OwnProcessId() {
    return static_cast<std::uint32_t>(getpid());
}

std::vector<RunningProcess> ListProcesses() {
    std::vector<RunningProcess> processes;
    std::error_code ignored;  // a folder that cannot be read lists nothing
    for (const auto& entry : std::filesystem::directory_iterator("/proc", ignored)) {
        const std::string name = entry.path().filename().string();
        std::uint32_t id = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
        if (error != std::errc{} || *end != '\0') continue;
        const std::wstring path = ReadImagePath(id);
        if (!path.empty()) processes.push_back({id, path.substr(path.rfind(L'\\') + 1)});
    }
    return processes;
}

std::wstring GetProcessImagePath(std::uint32_t processId) {
    return ReadImagePath(processId);
}

bool HasProcessEnded(std::uint32_t processId) {
    OwnChildren().Reap();
    if (processId == 0 || processId > INT_MAX) return true;
    // The C library's own function cannot be linked to C++ before glibc 2.37.
    const Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, processId, 0)));
    if (!process) return true;
    // Readable once the process has ended, even while its starter has not looked yet.
    pollfd ended{process.Get(), POLLIN, 0};
    return poll(&ended, 1, 0) != 0;
}

bool HasMainWindow(std::uint32_t processId) {
    return Host::HasX11MainWindow(processId);
}

bool IsProcessIdle(std::uint32_t processId) {
    std::ifstream file(ProcFile(std::to_string(processId), "stat"));
    std::string line;
    std::getline(file, line);
    // The program's name, in parentheses, may hold anything; the state stands behind it.
    const std::size_t name = line.rfind(')');
    return name != std::string::npos && line.substr(name).starts_with(") S");
}

}  // namespace Platform
