#include "platform/host/pending_files.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "platform/host/descriptor.h"
#include "platform/host/folder_entries.h"
#include "platform/host/folder_names.h"
#include "platform/host/sharing.h"

namespace Platform::Host {

bool IsAbandoned(int folder, const std::string& entry) {
    if (!entry.ends_with(DeleteOnCloseMark)) return false;
    const Descriptor file(
        ::openat(folder, entry.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file) return errno == ENOENT;  // gone meanwhile
    const ShareGate gate(file.Get());
    if (HasDeleter(file.Get())) return false;
    ::unlinkat(folder, entry.c_str(), 0);
    return true;
}

bool RemoveAbandoned(int folder) {
    bool any = false;
    const Error error = ForEachEntry(
        folder, [&](const dirent& entry) { any = IsAbandoned(folder, entry.d_name) || any; });
    return Succeeded(error) && any;
}

}  // namespace Platform::Host
