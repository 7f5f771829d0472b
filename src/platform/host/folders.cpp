#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/host/attributes.h"
#include "platform/host/errors.h"
#include "platform/host/folder_entries.h"
#include "platform/host/folder_names.h"
#include "platform/host/lookup.h"
#include "platform/host/pending_files.h"
#include "platform/host/sharing.h"
#include "platform/steps.h"
#include "platform/text.h"

namespace Platform {

namespace {

using namespace Host;

Error CheckLength(const HostPath& path) {
    const bool isLong = !path.isLiteral && path.text.size() > LongestFolderToMake &&
                        path.WindowsLength() > LongestFolderToMake;
    return isLong ? Error::NameTooLong : Error::None;
}

Error Make(const HostPath& path) {
    Place place;
    if (const Error error = FindPlace(path, place); !Succeeded(error)) return error;
    if (EntryExists(place)) return Error::AlreadyExists;
    if (!IsWritable(place.folder)) return Error::AccessDenied;
    const int result = ::mkdirat(place.folder.Get(), place.name.c_str(), 0777);
    return result == 0 ? Error::None : LastError();
}

Error RemoveFolderEntry(const Place& place, const Descriptor& folder, const struct stat& status) {
    const ShareGate gate(folder.Get());
    if (const Error error = CheckDeletable(folder.Get()); !Succeeded(error)) return error;
    const bool isReadOnly = (ReadAttributes(folder.Get(), status) & AttributeReadOnly) != 0;
    if (isReadOnly || !IsWritable(place.folder)) return Error::AccessDenied;
    const auto remove = [&] {
        return ::unlinkat(place.folder.Get(), place.name.c_str(), AT_REMOVEDIR) == 0;
    };
    if (remove()) return Error::None;
    const Error error = LastError();
    return error == Error::FolderNotEmpty && RemoveAbandoned(folder.Get()) && remove() ? Error::None
                                                                                       : error;
}

Error RemoveLink(const Place& place) {
    const LinkTarget target = ReadLinkTarget(place.folder.Get(), place.name.c_str());
    if (target == LinkTarget::File) return Error::InvalidFolder;
    if (!IsWritable(place.folder)) return Error::AccessDenied;
    return ::unlinkat(place.folder.Get(), place.name.c_str(), 0) == 0 ? Error::None : LastError();
}

// False when the entry has gone meanwhile.
bool DescribeEntry(int folder, const char* name, FolderEntry& entry) {
    struct stat status;
    if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
    if (S_ISDIR(status.st_mode)) {
        entry.attributes = AttributeFolder;
    } else if (S_ISLNK(status.st_mode)) {
        entry.attributes = LinkAttributes(ReadLinkTarget(folder, name));
    } else {
        entry.attributes = IsWritable(status) ? AttributeArchive : AttributeReadOnly;
        entry.size = static_cast<std::uint64_t>(status.st_size);
    }
    return true;
}

}  // namespace

Error MakeFolder(const std::wstring& path) {
    CountStep("folder", path);
    HostPath hostPath;
    if (const Error error = ParsePath(path, hostPath); !Succeeded(error)) return error;
    if (const Error error = CheckLength(hostPath); !Succeeded(error)) return error;
    return Make(hostPath);
}

Error MakeFolderPath(const std::wstring& path) {
    CountStep("folders", path);
    HostPath whole;
    if (const Error error = ParsePath(path, whole); !Succeeded(error)) return error;
    if (const Error error = CheckLength(whole); !Succeeded(error)) return error;
    HostPath part = whole;
    for (std::size_t end = HostPath::RootLength; end < whole.text.size();) {
        end = std::min(whole.text.find('/', end + 1), whole.text.size());
        part.text = whole.text.substr(0, end);
        const Error error = Make(part);
        const bool isLast = end == whole.text.size();
        if (isLast || (!Succeeded(error) && error != Error::AlreadyExists)) return error;
    }
    return Make(whole);  // a drive's root
}

Error RemoveEmptyFolder(const std::wstring& path) {
    CountStep("remove folder", path);
    Place place;
    if (const Error error = FindPlace(path, place); !Succeeded(error)) return error;
    Descriptor folder;
    const int failure = OpenEntry(place, O_RDONLY, folder);
    if (failure == ELOOP) return RemoveLink(place);
    if (failure != 0) return ErrorFromErrno(failure);
    struct stat status;
    if (::fstat(folder.Get(), &status) != 0) return LastError();
    if (!S_ISDIR(status.st_mode)) return Error::InvalidFolder;
    return RemoveFolderEntry(place, folder, status);
}

Error ListFolder(const std::wstring& folder, std::vector<FolderEntry>& entries) {
    entries.clear();
    HostPath hostPath;
    Error error = ParsePath(folder, hostPath);
    if (!Succeeded(error)) return error;
    Descriptor opened;
    error = OpenFollowing(hostPath, O_RDONLY | O_NONBLOCK, opened);
    if (!Succeeded(error)) return error == Error::FileNotFound ? Error::PathNotFound : error;
    struct stat status;
    if (::fstat(opened.Get(), &status) != 0) return LastError();
    if (!S_ISDIR(status.st_mode)) return Error::InvalidFolder;
    const int descriptor = opened.Get();
    return ForEachEntry(std::move(opened), [&](const dirent& found) {
        FolderEntry entry;
        if (IsAbandoned(descriptor, found.d_name)) return;
        if (!DescribeEntry(descriptor, found.d_name, entry)) return;
        entry.name = WideFromUtf8(PlainName(found.d_name));
        entries.push_back(std::move(entry));
    });
}

}  // namespace Platform
