#include "platform/host/open_file.h"

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <unistd.h>

#include "platform/host/attributes.h"
#include "platform/host/errors.h"
#include "platform/host/folder_names.h"
#include "platform/host/lookup.h"
#include "platform/host/sharing.h"

namespace Platform::Host {

namespace {

constexpr mode_t NewFileMode = 0777;  // Windows runs any file that is a program

bool IsPlainRead(const OpenOptions& options) {
    return options.access == AccessRead && options.sharing == ShareAll &&
           options.disposition == Disposition::OpenExisting && !options.deleteOnClose;
}

Error CheckKind(const HostPath& path, const OpenOptions& options, const struct stat& status) {
    if (S_ISDIR(status.st_mode)) return options.folder ? Error::None : Error::AccessDenied;
    if (path.namesFolder) return Error::InvalidName;
    return S_ISREG(status.st_mode) ? Error::None : Error::AccessDenied;
}

void RememberSize(OpenFile& file, const struct stat& status) {
    file.sizeAtOpening = S_ISDIR(status.st_mode) ? 0 : static_cast<std::uint64_t>(status.st_size);
    file.knowsSize = true;
}

Error OpenPlainReader(const HostPath& path, const OpenOptions& options, OpenFile& file) {
    Error error = OpenFollowing(path, O_RDONLY | O_NONBLOCK, file.descriptor);
    if (!Succeeded(error)) return error;
    error = AddPlainReader(file.descriptor.Get());
    if (!Succeeded(error)) return error;
    struct stat status;
    if (::fstat(file.descriptor.Get(), &status) != 0) return LastError();
    file.isPlainReader = true;
    RememberSize(file, status);
    return CheckKind(path, options, status);
}

// Any other way to open. Other processes may come between any two steps; then all is done again.
class Opening {
public:
    Opening(const HostPath& path, const OpenOptions& options, OpenFile& file)
        : path_(path), options_(options), file_(file) {
        // On Windows the right to delete comes with the wish.
        if (options_.deleteOnClose) options_.access |= AccessDelete;
        changes_ = (options_.access & AccessWrite) != 0 ||
                   options_.disposition == Disposition::CreateAlways;
    }

    Error Run() {
        for (int links = 0; links <= MostLinks;) {
            const std::string before = path_.text;
            if (const std::optional<Error> result = Try()) return *result;
            if (path_.text != before) ++links;
        }
        return Error::UnresolvableLink;
    }

private:
    // Nothing when it has to be tried again.
    std::optional<Error> Try() {
        if (const Error error = FindPlace(path_, place_); !Succeeded(error)) return error;
        isNew_ = false;
        const int failure = OpenAsNeeded();
        if (failure == ELOOP) {
            const Error error = ReadLink(place_, path_);
            return Succeeded(error) ? std::nullopt : std::optional(error);
        }
        if (failure == ENOENT) {
            if (options_.disposition == Disposition::OpenExisting) return Error::FileNotFound;
            const Error error = Create();
            if (error == Error::AlreadyExists) return std::nullopt;
            if (!Succeeded(error)) return error;
        } else if (failure != 0) {
            return ErrorFromErrno(failure);
        } else if (options_.disposition == Disposition::CreateNew) {
            return Error::FileExists;
        }
        return Enter();
    }

    // 0 or an errno.
    int OpenAsNeeded() {
        isWritable_ = changes_ || NeedsByte(options_.access, options_.sharing);
        const int failure = OpenEntry(place_, isWritable_ ? O_RDWR : O_RDONLY, file_.descriptor);
        // A folder, a running program, or what may not be written to.
        const bool mayBeReadable =
            failure == EISDIR || failure == ETXTBSY || failure == EACCES || failure == EROFS;
        if (!mayBeReadable || !isWritable_ || changes_) return failure;
        isWritable_ = false;
        return OpenEntry(place_, O_RDONLY, file_.descriptor);
    }

    Error Create() {
        if (path_.namesFolder) return Error::InvalidName;
        if (!IsWritable(place_.folder)) return Error::AccessDenied;
        if (options_.deleteOnClose) place_.name += DeleteOnCloseMark;
        file_.descriptor.Reset(::openat(place_.folder.Get(), place_.name.c_str(),
                                        O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                        NewFileMode));
        isNew_ = true;
        isWritable_ = true;
        return file_.descriptor ? Error::None : LastError();
    }

    std::optional<Error> Enter() {
        const int descriptor = file_.descriptor.Get();
        const ShareGate gate(descriptor);
        Error error = AddUser(descriptor, options_.access, options_.sharing, isWritable_);
        if (!Succeeded(error)) return error;
        struct stat status;
        if (::fstat(descriptor, &status) != 0) return LastError();
        // Removed or replaced before this user was counted.
        if (status.st_nlink == 0) return std::nullopt;
        error = CheckKind(path_, options_, status);
        if (Succeeded(error) && !isNew_) error = CheckRights(status);
        if (Succeeded(error) && !isNew_ && options_.disposition == Disposition::CreateAlways) {
            error = Empty(status);
        }
        if (Succeeded(error) && options_.deleteOnClose) error = MarkDeleteOnClose();
        RememberSize(file_, status);
        return error;
    }

    Error CheckRights(const struct stat& status) const {
        const bool deletes = (options_.access & AccessDelete) != 0;
        if (!changes_ && !deletes) return Error::None;
        const bool isReadOnlyFile = !S_ISDIR(status.st_mode) && !IsWritable(status);
        if (isReadOnlyFile && (changes_ || options_.deleteOnClose)) return Error::AccessDenied;
        return IsWritable(place_.folder) ? Error::None : Error::AccessDenied;
    }

    Error Empty(struct stat& status) const {
        const int descriptor = file_.descriptor.Get();
        const std::uint32_t attributes = ReadAttributes(descriptor, status);
        if ((attributes & (AttributeHidden | AttributeSystem)) != 0) return Error::AccessDenied;
        if (::ftruncate(descriptor, 0) != 0) return LastError();
        status.st_size = 0;
        return WriteAttributes(descriptor, status, AttributeNormal);
    }

    Error MarkDeleteOnClose() {
        if (const Error error = AddDeleter(file_.descriptor.Get()); !Succeeded(error)) return error;
        const std::string entry = place_.name;
        if (!entry.ends_with(DeleteOnCloseMark)) {
            place_.name += DeleteOnCloseMark;
            const int folder = place_.folder.Get();
            const int result = ::renameat(folder, entry.c_str(), folder, place_.name.c_str());
            if (result != 0) return LastError();
        }
        file_.pendingFolder = std::move(place_.folder);
        file_.pendingName = place_.name;
        return Error::None;
    }

    HostPath path_;
    OpenOptions options_;
    OpenFile& file_;
    bool changes_ = false;  // needs the right to write
    Place place_;
    bool isNew_ = false;
    bool isWritable_ = false;
};

}  // namespace

Error OpenShared(const HostPath& path, const OpenOptions& options, OpenFile& file) {
    file.access = options.access;
    if (IsPlainRead(options)) return OpenPlainReader(path, options, file);
    return Opening(path, options, file).Run();
}

void CloseShared(OpenFile& file) {
    const int descriptor = file.descriptor.Get();
    if (file.pendingFolder) {
        const ShareGate gate(descriptor);
        struct stat own;
        struct stat found;
        const int folder = file.pendingFolder.Get();
        const char* name = file.pendingName.c_str();
        // A failure leaves the mark, and the file goes when somebody comes upon it.
        if (::fstat(descriptor, &own) == 0 &&
            ::fstatat(folder, name, &found, AT_SYMLINK_NOFOLLOW) == 0 &&
            own.st_ino == found.st_ino && own.st_dev == found.st_dev) {
            ::unlinkat(folder, name, 0);
        }
    }
    if (!file.isPlainReader) RemoveUser(descriptor);
}

}  // namespace Platform::Host
