#include "program_commands.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <sys/wait.h>

#include "failure.h"
#include "platform/clock.h"
#include "platform/host/command_line.h"
#include "platform/host/program_start.h"
#include "platform/processes.h"
#include "platform/text.h"

namespace MachineTool {

using namespace Platform;

namespace {

/// As for other tools that start a program: it could not be started at all.
constexpr int CannotStart = 125;

constexpr int ForwardedSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile pid_t g_child = 0;

void Forward(int number) {
    if (g_child > 0) kill(g_child, number);
}

/// Holds back the signals that are to be forwarded.
class HeldSignals {
public:
    HeldSignals() {
        sigemptyset(&signals_);
        for (const int number : ForwardedSignals)
            sigaddset(&signals_, number);
        sigprocmask(SIG_BLOCK, &signals_, nullptr);
    }
    void Release() const { sigprocmask(SIG_UNBLOCK, &signals_, nullptr); }

private:
    sigset_t signals_;
};

std::vector<RunningProcess> ListOthers() {
    std::vector<RunningProcess> processes = ListProcesses();
    std::erase_if(processes, [](const auto& process) { return process.id == OwnProcessId(); });
    return processes;
}

}  // namespace

int RunProgram(std::wstring program, const std::vector<std::string>& arguments) {
    std::replace(program.begin(), program.end(), L'/', L'\\');
    const std::wstring line =
        L'"' + program + L"\" " + WideFromUtf8(Host::JoinArguments(arguments));
    const std::wstring folder = program.substr(0, program.rfind(L'\\') + 1);
    // A signal that comes meanwhile waits until there is a child to pass it on to.
    const HeldSignals held;
    pid_t child = 0;
    const Error error = Host::StartProgram(
        {.application = program, .commandLine = line, .workingFolder = folder}, {}, child);
    if (!Succeeded(error)) {
        throw Failure(Utf8FromWide(program) + " cannot be started", error, CannotStart);
    }
    g_child = child;
    for (const int number : ForwardedSignals)
        std::signal(number, Forward);
    held.Release();
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR) throw Failure("the program's end was missed", CannotStart);
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void PrintPrograms() {
    for (const RunningProcess& process : ListOthers()) {
        const std::string path = Utf8FromWide(GetProcessImagePath(process.id));
        if (!path.empty()) std::printf("%u %s\n", process.id, path.c_str());
    }
}

void KillPrograms() {
    for (const RunningProcess& process : ListOthers()) {
        kill(static_cast<pid_t>(process.id), SIGKILL);
        while (!HasProcessEnded(process.id))
            SleepMilliseconds(1);
    }
}

}  // namespace MachineTool
