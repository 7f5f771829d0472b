#include "platform/host/lookup.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "platform/host/errors.h"
#include "platform/host/folder_names.h"
#include "platform/host/machine.h"
#include "platform/host/pending_files.h"

namespace Platform::Host {

namespace {

constexpr int OnlyFolder = O_PATH | O_DIRECTORY | O_CLOEXEC;

// What a folder on the way to something turns out to be.
Error FolderError(int number) {
    return number == ENOENT || number == ENOTDIR ? Error::PathNotFound : ErrorFromErrno(number);
}

// Puts a link's target in place of the link: base is the folder the link stands in.
Error JoinTarget(std::string_view base, std::string_view target, std::string& text) {
    const std::string& machine = MachineFolder();
    text = base;
    if (target.starts_with('/')) {
        const bool inside = target.size() > machine.size() && target.starts_with(machine) &&
                            target[machine.size()] == '/';
        if (!inside) return Error::UnresolvableLink;
        target.remove_prefix(machine.size() + 1);
        text.clear();
    }
    while (!target.empty()) {
        const std::size_t end = std::min(target.find('/'), target.size());
        const std::string_view name = target.substr(0, end);
        target.remove_prefix(std::min(end + 1, target.size()));
        if (name.empty() || name == ".") continue;
        if (name == "..") {
            if (text.empty()) return Error::UnresolvableLink;
            const std::size_t cut = text.rfind('/');
            text.resize(cut == text.npos ? 0 : cut);
            continue;
        }
        if (!text.empty()) text += '/';
        text += name;
    }
    return IsOnDrive(text) ? Error::None : Error::UnresolvableLink;
}

Error ReadLinkText(int folder, const char* name, std::string_view folderText, std::string& text) {
    char target[PATH_MAX];
    const ssize_t length = ::readlinkat(folder, name, target, sizeof target);
    if (length < 0) return LastError();
    return JoinTarget(folderText, {target, static_cast<std::size_t>(length)}, text);
}

// After the system has found nothing under place.name.
bool FindOtherCase(Place& place) {
    std::string entry;
    if (!FindEntry(place.folder.Get(), place.name, entry)) return false;
    if (IsAbandoned(place.folder.Get(), entry)) return false;
    place.name = std::move(entry);
    return true;
}

// Goes from a drive's root to a folder name by name: other cases, and links on the way.
class Walk {
public:
    explicit Walk(std::string_view text) : wanted_(text) {}

    Error ToFolder(Place& place) {
        Error error = Begin();
        while (Succeeded(error) && done_ < wanted_.size())
            error = Step();
        place.folder = std::move(current_.folder);
        place.folderText = std::move(current_.folderText);
        return error;
    }

private:
    Error Begin() {
        if (!IsOnDrive(wanted_)) return Error::PathNotFound;
        done_ = HostPath::RootLength;
        current_.folderText = wanted_.substr(0, done_);
        current_.folder.Reset(OpenExact(current_.folderText.c_str(), OnlyFolder));
        return current_.folder ? Error::None : FolderError(errno);
    }

    Error Step() {
        const std::size_t start = done_ + 1;
        const std::size_t end = std::min(wanted_.find('/', start), wanted_.size());
        current_.name = wanted_.substr(start, end - start);
        Descriptor next = OpenCurrent();
        if (!next) {
            if (errno != ENOENT) return FolderError(errno);
            if (!FindOtherCase(current_)) return Error::PathNotFound;
            next = OpenCurrent();
            if (!next) return FolderError(errno);
        }
        struct stat status;
        if (::fstat(next.Get(), &status) != 0) return LastError();
        if (S_ISLNK(status.st_mode)) return FollowLink(end);
        if (!S_ISDIR(status.st_mode)) return Error::PathNotFound;
        current_.folder = std::move(next);
        current_.folderText += '/' + current_.name;
        done_ = end;
        return Error::None;
    }

    Error FollowLink(std::size_t end) {
        if (++links_ > MostLinks) return Error::UnresolvableLink;
        std::string target;
        const Error error =
            ReadLinkText(current_.folder.Get(), current_.name.c_str(), current_.folderText, target);
        if (!Succeeded(error)) return error;
        wanted_ = target + wanted_.substr(end);
        return Begin();
    }

    Descriptor OpenCurrent() const {
        return Descriptor(::openat(current_.folder.Get(), current_.name.c_str(),
                                   O_PATH | O_NOFOLLOW | O_CLOEXEC));
    }

    std::string wanted_;
    std::size_t done_ = 0;  // so much of wanted_ is current_.folder
    Place current_;
    int links_ = 0;
};

}  // namespace

int OpenExact(const char* text, int flags) {
    open_how how{};
    how.flags = static_cast<unsigned>(flags | O_CLOEXEC);
    how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_BENEATH;
    return static_cast<int>(::syscall(SYS_openat2, MachineDescriptor(), text, &how, sizeof how));
}

Error FindPlace(const HostPath& path, Place& place) {
    if (path.IsRoot()) {
        place.name = ".";
        place.folderText = path.text;
        place.folder.Reset(OpenExact(path.text.c_str(), OnlyFolder));
        return place.folder ? Error::None : FolderError(errno);
    }
    place.name = path.Name();
    place.folderText = path.Folder();
    place.folder.Reset(OpenExact(place.folderText.c_str(), OnlyFolder));
    if (place.folder) return Error::None;
    if (errno != ENOENT && errno != ELOOP && errno != ENOTDIR) return FolderError(errno);
    return Walk(path.Folder()).ToFolder(place);
}

Error FindPlace(const std::wstring& path, Place& place) {
    HostPath parsed;
    const Error error = ParsePath(path, parsed);
    return Succeeded(error) ? FindPlace(parsed, place) : error;
}

int OpenEntry(Place& place, int flags, Descriptor& opened) {
    const auto open = [&] {
        opened.Reset(::openat(place.folder.Get(), place.name.c_str(),
                              flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        return opened ? 0 : errno;
    };
    const int failure = open();
    return failure == ENOENT && FindOtherCase(place) ? open() : failure;
}

bool EntryExists(Place& place) {
    const int result =
        ::faccessat(place.folder.Get(), place.name.c_str(), F_OK, AT_SYMLINK_NOFOLLOW);
    return result == 0 || FindOtherCase(place);
}

Error ReadLink(const Place& place, HostPath& target) {
    return ReadLinkText(place.folder.Get(), place.name.c_str(), place.folderText, target.text);
}

Error OpenFollowing(const HostPath& path, int flags, Descriptor& opened) {
    opened.Reset(OpenExact(path.text.c_str(), flags));
    if (opened) return Error::None;
    if (errno != ENOENT && errno != ELOOP) return ErrorFromErrno(errno);
    HostPath followed = path;
    for (int links = 0; links <= MostLinks; ++links) {
        Place place;
        if (const Error error = FindPlace(followed, place); !Succeeded(error)) return error;
        const int failure = OpenEntry(place, flags, opened);
        if (failure != ELOOP) return ErrorFromErrno(failure);
        if (const Error error = ReadLink(place, followed); !Succeeded(error)) return error;
    }
    return Error::UnresolvableLink;
}

std::string HostPathOf(const std::wstring& path) {
    HostPath parsed;
    if (!Succeeded(ParsePath(path, parsed))) return {};
    Place place;
    std::string missing;
    while (!parsed.IsRoot() && !Succeeded(FindPlace(parsed, place))) {
        missing.insert(0, '/' + std::string(parsed.Name()));
        parsed.text.resize(parsed.Folder().size());
    }
    std::string found = MachineFolder() + '/';
    if (parsed.IsRoot()) return found + parsed.text + missing;
    if (missing.empty()) EntryExists(place);  // for its name as it is
    return found + place.folderText + '/' + place.name + missing;
}

}  // namespace Platform::Host
