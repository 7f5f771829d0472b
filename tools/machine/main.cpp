#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "attribute_command.h"
#include "failure.h"
#include "platform/files.h"
#include "platform/host/machine.h"
#include "platform/text.h"
#include "program_commands.h"
#include "registry_command.h"

namespace MachineTool {

namespace {

/// A second drive, so that a move from drive to drive can be tried.
constexpr const char* SecondDrive = "/drive_d";

/// The machine's folder is told to the library as it is to every program: by the environment.
void UseMachine(const std::string& folder) {
    setenv("TOLVAN_MACHINE", folder.c_str(), 1);
}

void UseExistingMachine(const std::string& folder) {
    if (!std::filesystem::is_directory(folder + "/run")) {
        throw Failure(folder + " is no machine; \"tolvan-machine " + folder + " init\" makes one");
    }
    UseMachine(folder);
}

void Init(const std::string& folder) {
    UseMachine(folder);
    std::filesystem::create_directories(Platform::Host::MachineFolder() + SecondDrive);
}

void PrintHostPath(const std::string& path) {
    const std::string hostPath = Platform::Host::HostPathOf(Platform::WideFromUtf8(path));
    if (hostPath.empty()) throw Failure("there can be no " + path + " on this machine");
    std::puts(hostPath.c_str());
}

void PrintWindowsPath(const std::string& path) {
    const std::filesystem::path full = std::filesystem::weakly_canonical(path);
    const std::wstring windowsPath = Platform::Host::WindowsPathOf(full.string());
    if (windowsPath.empty()) throw Failure(path + " lies on no drive of the machine");
    std::puts(Platform::Utf8FromWide(windowsPath).c_str());
}

void End(const std::string& folder) {
    KillPrograms();
    std::filesystem::remove_all(folder);
}

void Reboot() {
    KillPrograms();
    const std::string list = Platform::Host::RebootListFile();
    std::ifstream lines(list);
    for (std::string line; std::getline(lines, line);) {
        const std::wstring path = Platform::WideFromUtf8(line);
        // As on Windows: what cannot go now, or holds something, stays for good.
        if (Platform::IsExistingFolder(path)) {
            (void)Platform::RemoveEmptyFolder(path);
        } else {
            (void)Platform::RemoveFile(path);
        }
    }
    std::filesystem::remove(list);
}

/// Makes the command whose own arguments all come behind it, whatever they look like.
CLI::App* AddOpenCommand(CLI::App& app, const std::string& name, const std::string& help) {
    CLI::App* command = app.add_subcommand(name, help);
    command->prefix_command();
    return command;
}

int Run(int count, char** values) {
    CLI::App app(
        "Makes a host machine, the folder that plays a Windows machine, and looks into it.");
    app.require_subcommand(1);
    std::string folder;
    std::string path;
    app.add_option("FOLDER", folder, "The machine's folder")->required();
    CLI::App* init = app.add_subcommand("init", "Makes the machine, with the drives C: and D:");
    CLI::App* hostPath = app.add_subcommand("path", "Prints where a Windows path lies here");
    hostPath->add_option("PATH", path, "As C:\\dir\\file; it need not exist")->required();
    CLI::App* windowsPath =
        app.add_subcommand("windows-path", "Prints the Windows path of a file of the machine");
    windowsPath->add_option("PATH", path, "A path of this system")->required();
    CLI::App* registry = AddOpenCommand(app, "reg", "Does what Windows' own reg does");
    registry->footer(RegistryUsage);
    CLI::App* attributes =
        AddOpenCommand(app, "attrib", "Does what Windows' own attrib does, for one path");
    attributes->footer("attrib [+r|-r] [+a|-a] [+s|-s] [+h|-h] [+i|-i] PATH");
    attributes->set_help_flag("--help");
    CLI::App* run = AddOpenCommand(
        app, "run", "Runs a program in its own folder, waits, and returns its exit code");
    run->footer(
        "run 'C:\\dir\\program.exe' ARGUMENT...\n125: it cannot be started; "
        "128 and the signal's number: it was killed.");
    CLI::App* programs = app.add_subcommand("ps", "Lists the running programs: process id, path");
    CLI::App* reboot = app.add_subcommand(
        "reboot", "Kills what still runs, and removes what was to go at the next start");
    CLI::App* end = app.add_subcommand("end", "Kills what still runs, and removes the machine");
    try {
        app.parse(count, values);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : 2;
    }

    if (init->parsed()) {
        Init(folder);
        return 0;
    }
    UseExistingMachine(folder);
    if (hostPath->parsed()) PrintHostPath(path);
    if (windowsPath->parsed()) PrintWindowsPath(path);
    if (registry->parsed()) RunRegistryCommand(registry->remaining());
    if (attributes->parsed()) RunAttributeCommand(attributes->remaining());
    if (programs->parsed()) PrintPrograms();
    if (reboot->parsed()) Reboot();
    if (end->parsed()) End(folder);
    if (run->parsed()) {
        std::vector<std::string> words = run->remaining();
        if (words.empty()) throw Failure("run needs a program", 2);
        const std::wstring program = Platform::WideFromUtf8(words.front());
        words.erase(words.begin());
        return RunProgram(program, words);
    }
    return 0;
}

}  // namespace

}  // namespace MachineTool

int main(int count, char** values) {
    try {
        return MachineTool::Run(count, values);
    } catch (const MachineTool::Failure& failure) {
        std::fprintf(stderr, "tolvan-machine: %s\n", failure.what());
        return failure.ExitCode();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolvan-machine: %s\n", error.what());
        return 1;
    }
}
