#include "platform/named_objects.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

#include "platform/host/descriptor.h"
#include "platform/host/errors.h"
#include "platform/host/machine.h"
#include "platform/text.h"

// An object is a file in the machine's run folder, and it exists while somebody holds a shared lock
// on the file's byte 1. Whoever opens the file holds byte 0 alone meanwhile, so that exactly one
// process finds no holder and becomes the creator. The locks belong to the open file, so they end
// with the last descriptor of it, however the process ends. The file itself stays.

namespace Platform {

namespace {

using Host::Descriptor;

constexpr std::size_t LongestName = 260;
constexpr off_t OpeningByte = 0;
constexpr off_t ExistenceByte = 1;

enum class Kind : char { Mutex = 'M', Event = 'E' };

/// What the file holds.
struct Content {
    Kind kind;
    bool signalled;
};
constexpr off_t SignalledOffset = 1;
static_assert(sizeof(Content) == 2 && sizeof(bool) == 1);

bool Lock(const Descriptor& file, int command, short type, off_t byte) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = byte;
    range.l_len = 1;
    int result = 0;
    do {
        result = fcntl(file.Get(), command, &range);
    } while (result != 0 && errno == EINTR);
    return result == 0 && (command != F_OFD_GETLK || range.l_type == F_UNLCK);
}

bool HasHolder(const Descriptor& file) {
    return !Lock(file, F_OFD_GETLK, F_WRLCK, ExistenceByte);
}

/// Maps every name to a path of its own. A long name becomes folders, whose "+" no name keeps.
std::string PathOf(const std::wstring& name) {
    constexpr std::string_view Plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-";
    constexpr std::string_view Digits = "0123456789abcdef";
    constexpr std::size_t PartSize = 200;
    constexpr std::wstring_view SessionPrefix = L"Local\\";
    std::wstring_view plainName = name;
    // Without a prefix a name is one of the session, too.
    if (plainName.starts_with(SessionPrefix)) plainName.remove_prefix(SessionPrefix.size());
    std::string path = Host::RunFolder() + "/objects/";
    std::size_t part = 0;
    for (const char character : Utf8FromWide(plainName)) {
        if (part >= PartSize) {
            path += "+/";
            part = 0;
        }
        if (Plain.find(character) != std::string_view::npos) {
            path += character;
            part += 1;
        } else {
            const auto value = static_cast<unsigned char>(character);
            path += {'%', Digits[value / 16], Digits[value % 16]};
            part += 3;
        }
    }
    return path;
}

Descriptor OpenFile(const std::string& path, bool create) {
    const int flags = O_RDWR | O_CLOEXEC | (create ? O_CREAT : 0);
    Descriptor file(open(path.c_str(), flags, 0666));
    if (!file && errno == ENOENT && create) {
        std::error_code ignored;  // the second try tells what is wrong
        std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
        file.Reset(open(path.c_str(), flags, 0666));
    }
    return file;
}

constexpr unsigned AllRights = EventWait | EventModify;
constexpr int RightBits = 2;

int FileOf(std::intptr_t handle) {
    return static_cast<int>(handle >> RightBits) - 1;
}

bool Allows(std::intptr_t handle, unsigned right) {
    return (static_cast<unsigned>(handle) & right) != 0;
}

/// Opens the object or, when told to, makes it. The handle is the descriptor's number and one, with
/// the rights in its lowest bits.
Error OpenObject(const std::wstring& name, Kind kind, bool create, unsigned rights,
                 std::intptr_t& handle, bool& existed) {
    existed = false;
    if (name.empty()) return Error::InvalidParameter;
    if (name.size() > LongestName) return Error::NameTooLong;
    Descriptor file = OpenFile(PathOf(name), create);
    if (!file || !Lock(file, F_OFD_SETLKW, F_WRLCK, OpeningByte))
        return Host::ErrorFromErrno(errno);
    existed = HasHolder(file);
    if (existed) {
        Content content{};
        if (pread(file.Get(), &content, sizeof content, 0) != sizeof content) {
            return Host::ErrorFromErrno(errno);
        }
        if (content.kind != kind) return Error::InvalidHandle;
    } else {
        if (!create) return Error::FileNotFound;
        const Content content{kind, false};
        if (pwrite(file.Get(), &content, sizeof content, 0) != sizeof content) {
            return Host::ErrorFromErrno(errno);
        }
    }
    if (!Lock(file, F_OFD_SETLK, F_RDLCK, ExistenceByte) ||
        !Lock(file, F_OFD_SETLK, F_UNLCK, OpeningByte)) {
        return Host::ErrorFromErrno(errno);
    }
    handle = ((file.Release() + 1) << RightBits) | static_cast<int>(rights);
    return Error::None;
}

void CloseObject(std::intptr_t& handle) {
    if (handle == 0) return;
    const Descriptor file(FileOf(std::exchange(handle, 0)));
    // A process that is just being started may share the open file for an instant.
    Lock(file, F_OFD_SETLK, F_UNLCK, ExistenceByte);
}

Error WriteSignalled(std::intptr_t handle, bool signalled) {
    if (handle == 0) return Error::InvalidHandle;
    if (!Allows(handle, EventModify)) return Error::AccessDenied;
    const bool written = pwrite(FileOf(handle), &signalled, 1, SignalledOffset) == 1;
    return written ? Error::None : Host::ErrorFromErrno(errno);
}

}  // namespace

Error NamedMutex::Create(const std::wstring& name, bool& existed) {
    Close();
    return OpenObject(name, Kind::Mutex, true, AllRights, handle_, existed);
}

void NamedMutex::Close() {
    CloseObject(handle_);
}

Error NamedEvent::Create(const std::wstring& name, bool& existed) {
    Close();
    return OpenObject(name, Kind::Event, true, AllRights, handle_, existed);
}

Error NamedEvent::Open(const std::wstring& name, unsigned rights) {
    Close();
    bool existed = false;
    return OpenObject(name, Kind::Event, false, rights & AllRights, handle_, existed);
}

Error NamedEvent::Set() {
    return WriteSignalled(handle_, true);
}

Error NamedEvent::Reset() {
    return WriteSignalled(handle_, false);
}

bool NamedEvent::IsSet() const {
    bool signalled = false;
    return Allows(handle_, EventWait) &&
           pread(FileOf(handle_), &signalled, 1, SignalledOffset) == 1 && signalled;
}

void NamedEvent::Close() {
    CloseObject(handle_);
}

}  // namespace Platform
