#include "platform/host/attributes.h"

#include <charconv>
#include <fcntl.h>
#include <string_view>
#include <sys/xattr.h>

#include "platform/files.h"
#include "platform/host/errors.h"

namespace Platform::Host {

namespace {

constexpr const char* AttributesName = "user.tolvan.attributes";
constexpr std::uint32_t KeptOfFile = AttributeHidden | AttributeSystem | AttributeNotContentIndexed;
constexpr std::uint32_t KeptOfFolder = KeptOfFile | AttributeReadOnly;

std::uint32_t KeptBits(const struct stat& status) {
    return S_ISDIR(status.st_mode) ? KeptOfFolder : KeptOfFile;
}

// Decimal text, so that the usual tools show it. Nothing where the disk has no such attributes.
std::uint32_t ReadKept(int descriptor, const struct stat& status) {
    char text[16];
    const ssize_t length = ::fgetxattr(descriptor, AttributesName, text, sizeof text);
    if (length <= 0) return 0;
    std::uint32_t kept = 0;
    std::from_chars(text, text + length, kept);
    return kept & KeptBits(status);
}

Error WriteKept(int descriptor, std::uint32_t kept) {
    char text[16];
    const char* end = std::to_chars(text, text + sizeof text, kept).ptr;
    const int result =
        ::fsetxattr(descriptor, AttributesName, text, static_cast<std::size_t>(end - text), 0);
    return result == 0 ? Error::None : LastError();
}

}  // namespace

std::uint32_t ReadAttributes(int descriptor, const struct stat& status) {
    std::uint32_t attributes = ReadKept(descriptor, status);
    if (S_ISDIR(status.st_mode)) return attributes | AttributeFolder;
    if (!IsWritable(status)) attributes |= AttributeReadOnly;
    return attributes == 0 ? std::uint32_t{AttributeArchive} : attributes;
}

LinkTarget ReadLinkTarget(int folder, const char* name) {
    struct stat target;
    if (::fstatat(folder, name, &target, 0) != 0) return LinkTarget::Missing;
    return S_ISDIR(target.st_mode) ? LinkTarget::Folder : LinkTarget::File;
}

std::uint32_t LinkAttributes(LinkTarget target) {
    const std::uint32_t kind = target == LinkTarget::Folder ? std::uint32_t{AttributeFolder} : 0;
    return AttributeReparsePoint | kind;
}

Error WriteAttributes(int descriptor, const struct stat& status, std::uint32_t attributes) {
    const std::uint32_t wanted = attributes & KeptBits(status);
    const bool changesKept = wanted != ReadKept(descriptor, status);
    mode_t mode = status.st_mode & 07777;
    const auto setMode = [&](mode_t changed) {
        if (changed == mode) return Error::None;
        mode = changed;
        return ::fchmod(descriptor, mode) == 0 ? Error::None : LastError();
    };
    const bool isReadOnly = !S_ISDIR(status.st_mode) && (attributes & AttributeReadOnly) != 0;
    Error error = Error::None;
    // The system lets only those set an extended attribute who may write to the file.
    if (changesKept || !isReadOnly) error = setMode(mode | S_IWUSR);
    if (Succeeded(error) && changesKept) error = WriteKept(descriptor, wanted);
    if (Succeeded(error) && isReadOnly)
        error = setMode(mode & ~mode_t{S_IWUSR | S_IWGRP | S_IWOTH});
    return error;
}

bool IsWritable(const struct stat& status) {
    return (status.st_mode & S_IWUSR) != 0;
}

bool IsWritable(const Descriptor& folder) {
    struct stat status;
    return ::fstat(folder.Get(), &status) == 0 && IsWritable(status);
}

}  // namespace Platform::Host
