#include "platform/host/current_folder.h"

#include <climits>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>

#include "platform/host/errors.h"
#include "platform/host/lookup.h"
#include "platform/host/machine.h"
#include "platform/host/open_file.h"
#include "platform/paths.h"

namespace Platform {

namespace Host {

namespace {

struct State {
    std::mutex mutex;  // guards what follows
    std::string text = "drive_c";
    /// As on Windows, a process holds its current folder: it can be neither removed nor renamed.
    OpenFile hold;

    State() {
        char folder[PATH_MAX];
        if (::getcwd(folder, sizeof folder) == nullptr) return;
        const std::wstring path = WindowsPathOf(folder);
        HostPath parsed;
        if (!path.empty() && Succeeded(ParsePath(path, parsed))) (void)Change(parsed);
    }

    Error Change(const HostPath& path) {
        OpenFile opened;
        const OpenOptions options{.sharing = ShareRead | ShareWrite, .folder = true};
        if (const Error error = OpenShared(path, options, opened); !Succeeded(error)) return error;
        // For the processes that this one starts.
        if (::fchdir(opened.descriptor.Get()) != 0) {
            return errno == ENOTDIR ? Error::InvalidFolder : LastError();
        }
        hold = std::move(opened);
        text = path.text;
        return Error::None;
    }
};

State& TheState() {
    static State& state = *new State;
    return state;
}

}  // namespace

std::string CurrentFolder() {
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    return state.text;
}

}  // namespace Host

Error ChangeCurrentFolder(const std::wstring& folder) {
    Host::HostPath path;
    if (const Error error = Host::ParsePath(folder, path); !Succeeded(error)) return error;
    Host::State& state = Host::TheState();
    const std::lock_guard lock(state.mutex);
    return state.Change(path);
}

}  // namespace Platform
