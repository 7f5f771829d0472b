#include "platform/host/open_below.h"

#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <unistd.h>
#include <unordered_set>

#include "platform/host/folder_entries.h"
#include "platform/host/machine.h"
#include "platform/host/sharing.h"

namespace Platform::Host {

namespace {

using Inodes = std::unordered_set<ino_t>;

// The files of the whole system that share locks are held on, without their disks: a candidate is
// asked itself. Reading the kernel's list saves opening every file of the folder.
Inodes LockedFiles() {
    Inodes locked;
    std::ifstream list("/proc/locks");
    for (std::string line; std::getline(list, line);) {
        // "1: OFDLCK ADVISORY  READ -1 fe:01:131 4611686018427387904 4611686018428436479"
        std::istringstream words(line);
        std::string number, kind, mode, type, process, file;
        off_t first = 0;
        if (!(words >> number >> kind >> mode >> type >> process >> file >> first)) continue;
        if (kind == "OFDLCK" && IsShareByte(first)) {
            locked.insert(std::strtoull(file.c_str() + file.rfind(':') + 1, nullptr, 10));
        }
    }
    return locked;
}

bool IsOpen(int folder, const char* name) {
    const Descriptor entry(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return entry && IsOpenElsewhere(entry.Get());
}

bool IsAnyOpen(Descriptor folder, const Inodes& candidates) {
    bool found = false;
    const int descriptor = folder.Get();
    const Error error = ForEachEntry(std::move(folder), [&](const dirent& entry) {
        if (found) return;
        found = candidates.contains(entry.d_ino) && IsOpen(descriptor, entry.d_name);
        if (found || entry.d_type != DT_DIR) return;
        Descriptor inner(
            ::openat(descriptor, entry.d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        found = inner && IsAnyOpen(std::move(inner), candidates);
    });
    return Succeeded(error) && found;
}

bool IsAnyRunningBelow(const std::string& folder) {
    bool found = false;
    const Error error = ForEachEntry(
        Descriptor(::open("/proc", O_RDONLY | O_DIRECTORY | O_CLOEXEC)), [&](const dirent& entry) {
            if (found || entry.d_name[0] < '1' || entry.d_name[0] > '9') return;
            char program[PATH_MAX];
            const std::string link = std::string("/proc/") + entry.d_name + "/exe";
            const ssize_t length = ::readlink(link.c_str(), program, sizeof program);
            found = length > 0 && std::string_view(program, static_cast<std::size_t>(length))
                                      .starts_with(folder + '/');
        });
    return Succeeded(error) && found;
}

}  // namespace

bool IsAnyOpenBelow(const Place& folder) {
    if (IsAnyRunningBelow(MachineFolder() + '/' + folder.folderText + '/' + folder.name)) {
        return true;
    }
    const Inodes candidates = LockedFiles();
    return !candidates.empty() &&
           IsAnyOpen(Descriptor(::openat(folder.folder.Get(), folder.name.c_str(),
                                         O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)),
                     candidates);
}

}  // namespace Platform::Host
