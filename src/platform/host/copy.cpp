#include <cerrno>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/host/attributes.h"
#include "platform/host/errors.h"
#include "platform/host/lookup.h"
#include "platform/host/open_file.h"
#include "platform/steps.h"

namespace Platform {

namespace {

using namespace Host;

constexpr std::size_t LargestStep = std::size_t{1} << 30;

bool IsSameFile(const struct stat& source, const HostPath& target) {
    Descriptor existing;
    struct stat status;
    return Succeeded(OpenFollowing(target, O_RDONLY | O_NONBLOCK, existing)) &&
           ::fstat(existing.Get(), &status) == 0 && status.st_ino == source.st_ino &&
           status.st_dev == source.st_dev;
}

Error CopyBytes(int source, int target) {
    for (;;) {
        const ssize_t length = ::sendfile(target, source, nullptr, LargestStep);
        if (length == 0) return Error::None;
        if (length < 0 && errno != EINTR) return LastError();
    }
}

Error CopyFacts(int source, const struct stat& status, int target) {
    const timespec times[] = {status.st_atim, status.st_mtim};
    if (::futimens(target, times) != 0) return LastError();
    struct stat targetStatus;
    if (::fstat(target, &targetStatus) != 0) return LastError();
    return WriteAttributes(target, targetStatus, ReadAttributes(source, status));
}

}  // namespace

Error CopyFileTo(const std::wstring& from, const std::wstring& to, bool overwrite) {
    HostPath fromPath;
    HostPath toPath;
    Error error = ParsePath(from, fromPath);
    if (Succeeded(error)) error = ParsePath(to, toPath);
    if (!Succeeded(error)) return error;
    OpenFile source;
    error = OpenShared(fromPath, {}, source);
    if (!Succeeded(error)) return error;
    struct stat status;
    if (::fstat(source.descriptor.Get(), &status) != 0) return LastError();
    if (IsSameFile(status, toPath)) return Error::SharingViolation;
    OpenFile target;
    error =
        OpenShared(toPath,
                   {.access = AccessWrite,
                    .sharing = ShareRead,
                    .disposition = overwrite ? Disposition::CreateAlways : Disposition::CreateNew},
                   target);
    if (!Succeeded(error)) return error;
    CountStep("copy", from);
    error = CopyBytes(source.descriptor.Get(), target.descriptor.Get());
    if (Succeeded(error)) {
        error = CopyFacts(source.descriptor.Get(), status, target.descriptor.Get());
    }
    CloseShared(target);
    target.descriptor.Reset();
    if (!Succeeded(error)) (void)RemoveFile(to);  // half a copy is worth nothing
    return error;
}

}  // namespace Platform
