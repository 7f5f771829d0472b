#include "platform/late_removal.h"

#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <unistd.h>

#include "platform/files.h"
#include "platform/host/descriptor.h"
#include "platform/host/errors.h"
#include "platform/host/machine.h"
#include "platform/text.h"

namespace Platform {

Error RemoveFolderLater(const std::wstring& folder, unsigned seconds) {
    if (!IsExistingFolder(folder)) return Error::PathNotFound;
    std::string text = Host::HostPathOf(folder);
    std::string pause = std::to_string(seconds);
    std::string shell = "/bin/sh";
    std::string option = "-c";
    std::string script = R"(sleep "$1"; rm -rf -- "$2")";
    char* arguments[] = {shell.data(), option.data(), script.data(), shell.data(),
                         pause.data(), text.data(),   nullptr};

    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    // It outlives this process and whoever waits for its output.
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    posix_spawn_file_actions_addchdir_np(&actions, "/");
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    pid_t child = 0;
    const int result =
        posix_spawn(&child, shell.c_str(), &actions, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return Host::ErrorFromErrno(result);
}

Error RemoveAtReboot(const std::wstring& path) {
    if (!PathExists(path)) return Error::FileNotFound;
    const std::string line = Utf8FromWide(path) + '\n';
    const Host::Descriptor list(
        ::open(Host::RebootListFile().c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666));
    if (!list) return Host::LastError();
    const ssize_t written = ::write(list.Get(), line.data(), line.size());
    return written == static_cast<ssize_t>(line.size()) ? Error::None : Host::LastError();
}

}  // namespace Platform
