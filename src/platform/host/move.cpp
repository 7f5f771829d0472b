#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

#include "platform/files.h"
#include "platform/host/attributes.h"
#include "platform/host/errors.h"
#include "platform/host/folder_names.h"
#include "platform/host/lookup.h"
#include "platform/host/open_below.h"
#include "platform/host/sharing.h"
#include "platform/steps.h"

namespace Platform {

namespace {

using namespace Host;

// One end of a move: an entry that may be missing, or a link, which is not opened.
struct End {
    Place place;
    Descriptor descriptor;
    struct stat status {};
    bool exists = false;
    bool isLink = false;

    bool IsFolder() const { return exists && S_ISDIR(status.st_mode); }
    bool IsSame(const End& other) const {
        return exists && other.exists && status.st_ino == other.status.st_ino &&
               status.st_dev == other.status.st_dev;
    }
};

// A running program cannot be opened for writing, which tells it.
bool IsRunning(Place& place) {
    Descriptor writable;
    return OpenEntry(place, O_RDWR, writable) == ETXTBSY;
}

Error FindEnd(const HostPath& path, End& end) {
    if (path.IsRoot()) return Error::AccessDenied;
    if (const Error error = FindPlace(path, end.place); !Succeeded(error)) return error;
    const int failure = OpenEntry(end.place, O_RDONLY, end.descriptor);
    if (failure == ENOENT) return Error::None;
    end.exists = true;
    end.isLink = failure == ELOOP;
    if (failure != 0 && !end.isLink) return ErrorFromErrno(failure);
    const int result =
        ::fstatat(end.place.folder.Get(), end.place.name.c_str(), &end.status, AT_SYMLINK_NOFOLLOW);
    return result == 0 ? Error::None : LastError();
}

Error CheckSource(End& source) {
    if (source.place.name.ends_with(DeleteOnCloseMark) || !IsWritable(source.place.folder)) {
        return Error::AccessDenied;
    }
    if (source.isLink) return Error::None;
    if (const Error error = CheckDeletable(source.descriptor.Get()); !Succeeded(error)) {
        return error;
    }
    return source.IsFolder() && IsAnyOpenBelow(source.place) ? Error::AccessDenied : Error::None;
}

Error CheckTarget(End& target, const End& source, bool replaceExisting) {
    if (!IsWritable(target.place.folder)) return Error::AccessDenied;
    if (!target.exists) return Error::None;
    if (!replaceExisting) return Error::AlreadyExists;
    if (source.IsFolder() || target.IsFolder()) return Error::AccessDenied;
    if (target.isLink) return Error::None;
    const bool isFree = IsWritable(target.status) && !IsOpenElsewhere(target.descriptor.Get()) &&
                        !IsRunning(target.place);
    return isFree ? Error::None : Error::AccessDenied;
}

Error Rename(const End& source, const End& target, const std::string& name) {
    const unsigned flags = target.exists ? 0 : RENAME_NOREPLACE;
    const int result = ::renameat2(source.place.folder.Get(), source.place.name.c_str(),
                                   target.place.folder.Get(), name.c_str(), flags);
    if (result == 0) return Error::None;
    return errno == EINVAL ? Error::AccessDenied : LastError();  // a folder into itself
}

Error RenameOnDrive(End& source, const HostPath& to, bool replaceExisting) {
    End target;
    if (const Error error = FindEnd(to, target); !Succeeded(error)) return error;
    if (target.IsSame(source)) {
        const ShareGate gate(source.descriptor.Get());
        if (const Error error = CheckSource(source); !Succeeded(error)) return error;
        return Rename(source, target, std::string(to.Name()));  // at most the case changes
    }
    // Two moves that meet lock in the same order.
    const bool targetFirst = target.exists && target.status.st_ino < source.status.st_ino;
    End& first = targetFirst ? target : source;
    End& second = targetFirst ? source : target;
    std::optional<ShareGate> firstGate;
    std::optional<ShareGate> secondGate;
    if (first.descriptor) firstGate.emplace(first.descriptor.Get());
    if (second.descriptor) secondGate.emplace(second.descriptor.Get());
    if (const Error error = CheckSource(source); !Succeeded(error)) return error;
    if (const Error error = CheckTarget(target, source, replaceExisting); !Succeeded(error))
        return error;
    return Rename(source, target, target.place.name);
}

Error CopyAndRemove(const End& source, const std::wstring& from, const std::wstring& to,
                    const MoveOptions& options) {
    if (source.IsFolder()) return Error::AccessDenied;
    const Error error = CopyFileTo(from, to, options.replaceExisting);
    if (error == Error::FileExists) return Error::AlreadyExists;
    return Succeeded(error) ? RemoveFile(from) : error;
}

Error RemoveLink(const Place& place) {
    const LinkTarget target = ReadLinkTarget(place.folder.Get(), place.name.c_str());
    if (target == LinkTarget::Folder || !IsWritable(place.folder)) return Error::AccessDenied;
    return ::unlinkat(place.folder.Get(), place.name.c_str(), 0) == 0 ? Error::None : LastError();
}

}  // namespace

// writeThrough asks for nothing more here: what a rename has done no kill undoes, and against a
// power cut the host machine promises nothing. Syncing would cost ten times the rename itself.
Error MovePath(const std::wstring& from, const std::wstring& to, const MoveOptions& options) {
    CountStep("move", from);
    HostPath fromPath;
    HostPath toPath;
    if (const Error error = ParsePath(from, fromPath); !Succeeded(error)) return error;
    if (const Error error = ParsePath(to, toPath); !Succeeded(error)) return error;
    End source;
    if (const Error error = FindEnd(fromPath, source); !Succeeded(error)) return error;
    if (!source.exists) return Error::FileNotFound;
    Error error = Error::NotSameDevice;
    if (fromPath.Drive() == toPath.Drive()) {
        error = RenameOnDrive(source, toPath, options.replaceExisting);
    }
    if (error == Error::NotSameDevice && options.copyAllowed) {
        return CopyAndRemove(source, from, to, options);
    }
    return error;
}

Error RemoveFile(const std::wstring& path) {
    CountStep("remove", path);
    HostPath hostPath;
    if (const Error error = ParsePath(path, hostPath); !Succeeded(error)) return error;
    if (hostPath.namesFolder) return Error::InvalidName;
    Place place;
    if (const Error error = FindPlace(hostPath, place); !Succeeded(error)) return error;
    Descriptor file;
    const int failure = OpenEntry(place, O_RDWR, file);
    if (failure == ELOOP) return RemoveLink(place);
    if (failure == ETXTBSY) return Error::AccessDenied;
    if (failure != 0) return ErrorFromErrno(failure);
    const ShareGate gate(file.Get());
    if (const Error error = CheckDeletable(file.Get()); !Succeeded(error)) return error;
    struct stat status;
    if (::fstat(file.Get(), &status) != 0) return LastError();
    if (!IsWritable(status) || !IsWritable(place.folder)) return Error::AccessDenied;
    return ::unlinkat(place.folder.Get(), place.name.c_str(), 0) == 0 ? Error::None : LastError();
}

}  // namespace Platform
