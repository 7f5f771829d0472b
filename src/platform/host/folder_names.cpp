#include "platform/host/folder_names.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <mutex>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <utility>

#include "platform/host/descriptor.h"
#include "platform/host/folder_entries.h"
#include "platform/text.h"

namespace Platform::Host {

namespace {

constexpr std::size_t MostNames = 300'000;
constexpr std::uint32_t WatchedChanges =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR;

using FolderId = std::pair<dev_t, ino_t>;

std::string Folded(std::string_view name) {
    std::string folded(PlainName(name));
    const bool isAscii = std::all_of(folded.begin(), folded.end(),
                                     [](char byte) { return static_cast<signed char>(byte) >= 0; });
    if (!isAscii) return Utf8FromWide(LowerCase(WideFromUtf8(folded)));
    for (char& byte : folded) {
        if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte | 0x20);
    }
    return folded;
}

class FolderNames {
public:
    bool Find(int folder, const FolderId& id, const std::string& folded, std::string& entry) {
        const std::lock_guard lock(mutex_);
        TakeChanges();
        auto known = folders_.find(id);
        if (known == folders_.end()) {
            if (!Read(folder, id)) return FindUncached(folder, folded, entry);
            known = folders_.find(id);
        }
        const auto found = known->second.names.find(folded);
        if (found == known->second.names.end()) return false;
        entry = found->second.empty() ? folded : found->second;
        return true;
    }

private:
    struct Folder {
        int watch = -1;
        bool hasTwins = false;  // made by other programs: two names that differ in case only
        // Folded name to the name on disk, which is left empty where it is the same.
        std::unordered_map<std::string, std::string> names;
    };

    static bool FindUncached(int folder, const std::string& folded, std::string& entry) {
        bool found = false;
        const Error error = ForEachEntry(folder, [&](const dirent& each) {
            if (found || Folded(each.d_name) != folded) return;
            entry = each.d_name;
            found = true;
        });
        return Succeeded(error) && found;
    }

    // The watch comes before the reading: a change in between is then told afterwards, and telling
    // it twice does no harm.
    bool Read(int folder, const FolderId& id) {
        if (!notifier_) notifier_.Reset(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
        if (!notifier_) return false;
        if (nameCount_ > MostNames) ForgetAll();
        const std::string path = "/proc/self/fd/" + std::to_string(folder);
        const int watch = ::inotify_add_watch(notifier_.Get(), path.c_str(), WatchedChanges);
        if (watch < 0) return false;
        watches_[watch] = id;
        Folder& known = folders_[id];
        known.watch = watch;
        const Error error =
            ForEachEntry(folder, [&](const dirent& entry) { Add(known, entry.d_name); });
        if (!Succeeded(error)) Forget(id);
        return Succeeded(error);
    }

    void Add(Folder& folder, std::string_view name) {
        std::string folded = Folded(name);
        std::string kept = folded == name ? std::string() : std::string(name);
        const auto [place, isNew] = folder.names.try_emplace(std::move(folded), std::move(kept));
        if (isNew) {
            ++nameCount_;
        } else if ((place->second.empty() ? place->first : place->second) != name) {
            folder.hasTwins = true;
        }
    }

    void Remove(const FolderId& id, Folder& folder, std::string_view name) {
        if (folder.hasTwins) {
            Forget(id);  // which of the two is left only a new reading tells
        } else {
            nameCount_ -= folder.names.erase(Folded(name));
        }
    }

    void TakeChanges() {
        if (!notifier_) return;
        alignas(inotify_event) char buffer[16384];
        for (ssize_t length; (length = ::read(notifier_.Get(), buffer, sizeof buffer)) > 0;) {
            for (ssize_t offset = 0; offset < length;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer + offset);
                offset += static_cast<ssize_t>(sizeof *event + event->len);
                TakeChange(*event);
            }
        }
    }

    void TakeChange(const inotify_event& event) {
        if (event.mask & IN_Q_OVERFLOW) return ForgetAll();
        const auto watched = watches_.find(event.wd);
        if (watched == watches_.end()) return;
        const FolderId id = watched->second;
        const auto known = folders_.find(id);
        if (event.mask & (IN_IGNORED | IN_UNMOUNT)) {
            watches_.erase(watched);
            if (known != folders_.end()) Drop(known);
        } else if (known != folders_.end()) {
            const std::string_view name(event.name);
            if (event.mask & (IN_CREATE | IN_MOVED_TO)) Add(known->second, name);
            if (event.mask & (IN_DELETE | IN_MOVED_FROM)) Remove(id, known->second, name);
        }
    }

    void Forget(const FolderId& id) {
        const auto known = folders_.find(id);
        if (known == folders_.end()) return;
        watches_.erase(known->second.watch);
        ::inotify_rm_watch(notifier_.Get(), known->second.watch);
        Drop(known);
    }

    void ForgetAll() {
        while (!folders_.empty())
            Forget(folders_.begin()->first);
    }

    void Drop(std::map<FolderId, Folder>::iterator known) {
        nameCount_ -= known->second.names.size();
        folders_.erase(known);
    }

    std::mutex mutex_;  // guards all that follows
    Descriptor notifier_;
    std::map<FolderId, Folder> folders_;
    std::unordered_map<int, FolderId> watches_;
    std::size_t nameCount_ = 0;
};

}  // namespace

std::string_view PlainName(std::string_view entry) {
    if (entry.ends_with(DeleteOnCloseMark)) entry.remove_suffix(1);
    return entry;
}

bool FindEntry(int folder, std::string_view name, std::string& entry) {
    static FolderNames& folders = *new FolderNames;  // outlives every static that closes a file
    struct stat status;
    if (::fstat(folder, &status) != 0) return false;
    return folders.Find(folder, {status.st_dev, status.st_ino}, Folded(name), entry);
}

}  // namespace Platform::Host
