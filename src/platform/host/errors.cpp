#include "platform/host/errors.h"

#include <cerrno>

namespace Platform::Host {

namespace {

struct Mapping {
    int number;
    Error error;
};

constexpr Mapping Mappings[] = {
    {0, Error::None},
    {ENOENT, Error::FileNotFound},
    {ENOTDIR, Error::PathNotFound},
    {EACCES, Error::AccessDenied},
    {EPERM, Error::AccessDenied},
    {EISDIR, Error::AccessDenied},
    {EBADF, Error::InvalidHandle},
    {EMFILE, Error::TooManyOpenFiles},
    {ENFILE, Error::TooManyOpenFiles},
    {ENOMEM, Error::NotEnoughMemory},
    {EXDEV, Error::NotSameDevice},
    {EROFS, Error::WriteProtected},
    {EAGAIN, Error::SharingViolation},
    {EBUSY, Error::SharingViolation},
    {ETXTBSY, Error::SharingViolation},
    {EOPNOTSUPP, Error::NotSupported},
    {EEXIST, Error::AlreadyExists},
    {EINVAL, Error::InvalidParameter},
    {ENOSPC, Error::DiskFull},
    {EDQUOT, Error::DiskFull},
    {EFBIG, Error::DiskFull},
    {EILSEQ, Error::InvalidName},
    {ENOTEMPTY, Error::FolderNotEmpty},
    {ENOEXEC, Error::BadExecutable},
    {ENAMETOOLONG, Error::NameTooLong},
    {EIO, Error::DeviceFailure},
    {ELOOP, Error::UnresolvableLink},
};

}  // namespace

Error ErrorFromErrno(int number) {
    for (const Mapping& mapping : Mappings) {
        if (mapping.number == number) return mapping.error;
    }
    return Error::GeneralFailure;
}

Error LastError() {
    return ErrorFromErrno(errno);
}

}  // namespace Platform::Host
