#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/host/attributes.h"
#include "platform/host/errors.h"
#include "platform/host/lookup.h"
#include "platform/host/machine.h"
#include "platform/steps.h"

namespace Platform {

namespace {

using namespace Host;

Error Describe(const HostPath& path, const struct stat& status, std::uint32_t attributes,
               FileInfo& info) {
    info.attributes = attributes;
    info.size = S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
    return path.namesFolder && !info.IsFolder() ? Error::InvalidName : Error::None;
}

Error DescribeOpen(const HostPath& path, const Descriptor& entry, FileInfo& info) {
    struct stat status;
    if (::fstat(entry.Get(), &status) != 0) return LastError();
    return Describe(path, status, ReadAttributes(entry.Get(), status), info);
}

}  // namespace

Error GetFileInfo(const std::wstring& path, FileInfo& info) {
    HostPath hostPath;
    Error error = ParsePath(path, hostPath);
    if (!Succeeded(error)) return error;
    Descriptor entry(OpenExact(hostPath.text.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK));
    if (entry) return DescribeOpen(hostPath, entry, info);
    Place place;
    error = FindPlace(hostPath, place);
    if (!Succeeded(error)) return error;
    const int failure = OpenEntry(place, O_RDONLY, entry);
    if (failure == 0) return DescribeOpen(hostPath, entry, info);
    if (failure == ELOOP) {
        const LinkTarget target = ReadLinkTarget(place.folder.Get(), place.name.c_str());
        return Describe(hostPath, {}, LinkAttributes(target), info);
    }
    if (failure != EACCES) return ErrorFromErrno(failure);
    // What may not be read still has its size.
    struct stat status;
    const int result =
        ::fstatat(place.folder.Get(), place.name.c_str(), &status, AT_SYMLINK_NOFOLLOW);
    if (result != 0) return LastError();
    return Describe(hostPath, status, ReadAttributes(-1, status), info);
}

bool PathExists(const std::wstring& path) {
    FileInfo info;
    return Succeeded(GetFileInfo(path, info));
}

bool IsExistingFolder(const std::wstring& path) {
    FileInfo info;
    return Succeeded(GetFileInfo(path, info)) && info.IsFolder();
}

Error GetFinalPath(const std::wstring& path, std::wstring& result) {
    HostPath hostPath;
    if (const Error error = ParsePath(path, hostPath); !Succeeded(error)) return error;
    Descriptor entry;
    if (const Error error = OpenFollowing(hostPath, O_RDONLY | O_NONBLOCK, entry);
        !Succeeded(error)) {
        return error;
    }
    char text[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(entry.Get());
    const ssize_t length = ::readlink(link.c_str(), text, sizeof text);
    if (length < 0) return LastError();
    result = WindowsPathOf({text, static_cast<std::size_t>(length)});
    return result.empty() ? Error::UnresolvableLink : Error::None;
}

Error GetIdentity(const std::wstring& path, std::wstring& result) {
    Place place;
    if (const Error error = FindPlace(path, place); !Succeeded(error)) return error;
    if (!EntryExists(place)) return Error::FileNotFound;
    // The disk gives a number anew at once, but not at the same time.
    struct statx status {};
    const int found = ::statx(place.folder.Get(), place.name.c_str(), AT_SYMLINK_NOFOLLOW,
                              STATX_INO | STATX_BTIME, &status);
    if (found != 0) return LastError();
    result = std::to_wstring(status.stx_dev_major) + L"-" + std::to_wstring(status.stx_dev_minor) +
             L"-" + std::to_wstring(status.stx_ino) + L"-" +
             std::to_wstring(status.stx_btime.tv_sec) + L"-" +
             std::to_wstring(status.stx_btime.tv_nsec);
    return Error::None;
}

Error ChangeAttributes(const std::wstring& path, std::uint32_t attributes) {
    CountStep("attributes", path);
    Place place;
    if (const Error error = FindPlace(path, place); !Succeeded(error)) return error;
    Descriptor entry;
    const int failure = OpenEntry(place, O_RDONLY, entry);
    if (failure == ELOOP) return Error::None;  // a link has no attributes of its own to change
    if (failure != 0) return ErrorFromErrno(failure);
    struct stat status;
    if (::fstat(entry.Get(), &status) != 0) return LastError();
    return WriteAttributes(entry.Get(), status, attributes);
}

}  // namespace Platform
