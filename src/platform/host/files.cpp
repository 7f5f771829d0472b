#include "platform/files.h"

#include <cerrno>
#include <memory>
#include <unistd.h>
#include <utility>

#include "platform/host/errors.h"
#include "platform/host/open_file.h"
#include "platform/steps.h"

namespace Platform {

namespace {

Host::OpenFile* Behind(std::intptr_t handle) {
    return handle == -1 ? nullptr : reinterpret_cast<Host::OpenFile*>(handle);
}

// Null, with the reason, when the handle may not be used so.
Host::OpenFile* Allowed(std::intptr_t handle, unsigned access, Error& error) {
    Host::OpenFile* file = Behind(handle);
    error = file == nullptr                ? Error::InvalidHandle
            : (file->access & access) == 0 ? Error::AccessDenied
                                           : Error::None;
    return Succeeded(error) ? file : nullptr;
}

}  // namespace

Error File::Open(const std::wstring& path, const OpenOptions& options) {
    Close();
    Host::HostPath hostPath;
    if (const Error error = Host::ParsePath(path, hostPath); !Succeeded(error)) return error;
    const bool creates = options.disposition != Disposition::OpenExisting;
    if (creates) CountStep("create", path);
    auto file = std::make_unique<Host::OpenFile>();
    if (const Error error = Host::OpenShared(hostPath, options, *file); !Succeeded(error)) {
        return error;
    }
    handle_ = reinterpret_cast<std::intptr_t>(file.release());
    if (creates) CountStep("fill", path);
    return Error::None;
}

Error File::Read(std::span<std::byte> buffer, std::size_t& got) {
    got = 0;
    Error error;
    const Host::OpenFile* file = Allowed(handle_, AccessRead, error);
    if (file == nullptr) return error;
    ssize_t length;
    do {
        length = ::read(file->descriptor.Get(), buffer.data(), buffer.size());
    } while (length < 0 && errno == EINTR);
    if (length < 0) return Host::LastError();
    got = static_cast<std::size_t>(length);
    return Error::None;
}

Error File::ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& got) {
    got = 0;
    Error error;
    const Host::OpenFile* file = Allowed(handle_, AccessRead, error);
    if (file == nullptr) return error;
    while (got < buffer.size()) {
        const ssize_t length = ::pread(file->descriptor.Get(), buffer.data() + got,
                                       buffer.size() - got, static_cast<off_t>(offset + got));
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return Host::LastError();
        if (length == 0) break;
        got += static_cast<std::size_t>(length);
    }
    return Error::None;
}

Error File::Write(std::span<const std::byte> bytes) {
    Error error;
    Host::OpenFile* file = Allowed(handle_, AccessWrite, error);
    if (file == nullptr) return error;
    file->knowsSize = false;
    while (!bytes.empty()) {
        const ssize_t length = ::write(file->descriptor.Get(), bytes.data(), bytes.size());
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return Host::LastError();
        bytes = bytes.subspan(static_cast<std::size_t>(length));
    }
    return Error::None;
}

Error File::Flush() {
    Error error;
    const Host::OpenFile* file = Allowed(handle_, AccessWrite, error);
    if (file == nullptr) return error;
    return ::fdatasync(file->descriptor.Get()) == 0 ? Error::None : Host::LastError();
}

// The system has it as soon as it is written.
Error File::Secure() {
    Error error;
    return Allowed(handle_, AccessWrite, error) == nullptr ? error : Error::None;
}

Error File::GetSize(std::uint64_t& size) const {
    Host::OpenFile* file = Behind(handle_);
    if (file == nullptr) return Error::InvalidHandle;
    if (!std::exchange(file->knowsSize, false)) {
        struct stat status;
        if (::fstat(file->descriptor.Get(), &status) != 0) return Host::LastError();
        file->sizeAtOpening = static_cast<std::uint64_t>(status.st_size);
    }
    size = file->sizeAtOpening;
    return Error::None;
}

void File::Close() {
    if (!IsOpen()) return;
    const std::unique_ptr<Host::OpenFile> file(Behind(std::exchange(handle_, -1)));
    Host::CloseShared(*file);
}

}  // namespace Platform
