#include "platform/disks.h"

#include <fcntl.h>
#include <sys/statvfs.h>

#include "platform/files.h"
#include "platform/host/errors.h"
#include "platform/host/lookup.h"

namespace Platform {

using namespace Host;

Error GetDiskSpace(const std::wstring& root, DiskSpace& space) {
    HostPath path;
    Error error = ParsePath(root, path);
    if (!Succeeded(error)) return error;
    Descriptor folder;
    error = OpenFollowing(path, O_RDONLY | O_DIRECTORY, folder);
    if (!Succeeded(error)) return error == Error::FileNotFound ? Error::PathNotFound : error;
    struct statvfs status;
    if (::fstatvfs(folder.Get(), &status) != 0) return LastError();
    space.freeBytes = std::uint64_t{status.f_bavail} * status.f_frsize;
    space.totalBytes = std::uint64_t{status.f_blocks} * status.f_frsize;
    return Error::None;
}

std::vector<std::wstring> ListFixedDrives() {
    std::vector<std::wstring> drives;
    for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
        std::wstring drive = {letter, L':'};
        if (IsExistingFolder(drive + L'\\')) drives.push_back(std::move(drive));
    }
    return drives;
}

}  // namespace Platform
