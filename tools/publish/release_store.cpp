#include "release_store.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <system_error>

namespace fs = std::filesystem;

namespace Publish {

namespace {

constexpr std::size_t Digits = 6;
constexpr const char* DraftEnding = ".new";
constexpr const char* LeavingEnding = ".old";

std::optional<unsigned> ReadReleaseName(const std::string& name) {
    unsigned number = 0;
    const char* end = name.data() + name.size();
    if (std::from_chars(name.data(), end, number).ptr != end || ReleaseName(number) != name) {
        return std::nullopt;
    }
    return number;
}

/// Calls syncfs (all that was written to the file system) or fsync (the folder's entries), so that
/// it survives a crash of the machine.
void Sync(const fs::path& folder, int (*sync)(int)) {
    const Platform::Host::Descriptor opened(
        ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened || sync(opened.Get()) != 0) {
        throw std::runtime_error(folder.string() + ": " + std::generic_category().message(errno));
    }
}

}  // namespace

std::string ReleaseName(unsigned release) {
    std::string name = std::to_string(release);
    name.insert(0, Digits - std::min(name.size(), Digits), '0');
    return name;
}

ReleaseStore::ReleaseStore(fs::path tree, Access access)
    : tree_(std::move(tree)), releases_(tree_ / "releases") {
    const fs::file_status current = fs::symlink_status(tree_ / "current");
    if (fs::exists(current) && !fs::is_symlink(current)) {
        throw std::runtime_error((tree_ / "current").string() +
                                 ": is no link, so this is no tree of tolvan-publish");
    }
    if (access == Access::Read) return;
    fs::create_directories(releases_);
    Lock();
    RemoveLeftovers();
}

void ReleaseStore::Lock() {
    const fs::path file = tree_ / "lock";
    lock_ = Platform::Host::Descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644));
    if (!lock_ || ::flock(lock_.Get(), LOCK_EX | LOCK_NB) != 0) {
        throw std::runtime_error(file.string() + ": " +
                                 (errno == EWOULDBLOCK ? "held by another run"
                                                       : std::generic_category().message(errno)));
    }
}

void ReleaseStore::RemoveLeftovers() const {
    fs::remove(tree_ / "current.new");
    std::vector<fs::path> leftovers;
    for (const auto& entry : fs::directory_iterator(releases_)) {
        const std::string ending = entry.path().extension();
        if (ending == DraftEnding || ending == LeavingEnding) leftovers.push_back(entry.path());
    }
    for (const fs::path& path : leftovers)
        fs::remove_all(path);
}

std::vector<unsigned> ReleaseStore::Releases() const {
    std::vector<unsigned> found;
    if (!fs::exists(releases_)) return found;
    for (const auto& entry : fs::directory_iterator(releases_)) {
        if (const auto number = ReadReleaseName(entry.path().filename())) found.push_back(*number);
    }
    std::ranges::sort(found);
    return found;
}

std::optional<unsigned> ReleaseStore::Current() const {
    std::error_code missing;
    const fs::path target = fs::read_symlink(tree_ / "current", missing);
    if (missing) return std::nullopt;
    return ReadReleaseName(target.parent_path().filename());
}

fs::path ReleaseStore::Folder(unsigned release) const {
    return releases_ / ReleaseName(release);
}

fs::path ReleaseStore::Draft(unsigned release) const {
    return releases_ / (ReleaseName(release) + DraftEnding);
}

fs::path ReleaseStore::Www(unsigned release) const {
    return Folder(release) / WwwName;
}

fs::path ReleaseStore::RecordFile(unsigned release) const {
    return Folder(release) / RecordName;
}

unsigned ReleaseStore::Next() const {
    const auto all = Releases();
    return all.empty() ? 1 : all.back() + 1;
}

fs::path ReleaseStore::Begin(unsigned release) const {
    fs::create_directories(Draft(release) / WwwName);
    return Draft(release);
}

void ReleaseStore::Commit(unsigned release) const {
    Sync(Draft(release), ::syncfs);
    fs::rename(Draft(release), Folder(release));
    Serve(release);
}

void ReleaseStore::Discard(unsigned release) const {
    fs::remove_all(Draft(release));
}

void ReleaseStore::Serve(unsigned release) const {
    const fs::path link = tree_ / "current.new";
    fs::remove(link);
    fs::create_directory_symlink(fs::path("releases") / ReleaseName(release) / WwwName, link);
    fs::rename(link, tree_ / "current");
    Sync(tree_, ::fsync);
}

void ReleaseStore::Remove(unsigned release) const {
    fs::path leaving = releases_ / (ReleaseName(release) + LeavingEnding);
    fs::rename(Folder(release), leaving);
    fs::remove_all(leaving);
}

void ReleaseStore::Prune(unsigned keep) const {
    std::vector<unsigned> all = Releases();
    const auto current = Current();
    while (all.size() > keep) {
        if (all.front() != current) Remove(all.front());
        all.erase(all.begin());
    }
}

}  // namespace Publish
