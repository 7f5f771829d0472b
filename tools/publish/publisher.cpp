#include "publisher.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <iterator>
#include <mutex>
#include <set>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

#include "input.h"
#include "lists.h"
#include "parallel.h"
#include "progress.h"

namespace fs = std::filesystem;

namespace Publish {

namespace {

constexpr const char* GameList = "scripts/index.txt";
constexpr const char* BaseList = "scripts/base.php";

std::int64_t NanosecondsNow() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::int64_t SecondsNow() {
    return NanosecondsNow() / 1'000'000'000;
}

/// A file that changed just before it was read may change again within the same tick of the file
/// system's clock; its stamp would not show that.
Stamp ReliableStamp(const Stamp& stamp) {
    constexpr std::int64_t Settled = 2'000'000'000;
    return NanosecondsNow() - stamp.changed < Settled ? Stamp{} : stamp;
}

std::string ReadText(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void WriteText(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    out << text;
    out.close();
    if (!out) throw std::runtime_error(file.string() + ": cannot be written");
}

class Publisher {
public:
    explicit Publisher(const Options& options)
        : options_(options),
          store_(options.tree, options.dryRun ? Access::Read : Access::Write),
          current_(store_.Current()),
          release_(store_.Next()) {
        if (!current_) return;
        oldRecord_ = ReadRecord(store_.RecordFile(*current_));
        oldWww_ = store_.Www(*current_);
    }

    Report Run() {
        Input input = CollectInput(options_);
        if (!input.problems.empty()) throw Refused{std::move(input.problems)};
        if (!options_.dryRun) {
            newWww_ = store_.Begin(release_) / ReleaseStore::WwwName;
            MakeFolders(input.items);
        }
        try {
            return Build(input.items);
        } catch (...) {
            if (!options_.dryRun) store_.Discard(release_);
            throw;
        }
    }

private:
    Report Build(const std::vector<Item>& items) {
        PublishItems(items);
        CarryOver();
        NoteRemovals(items);
        const auto texts = MakeTexts();
        report_.gameFiles = gameFiles_;
        if (!Differs(texts)) {
            if (!options_.dryRun) KeepRelease();
            return report_;
        }
        report_.release = release_;
        if (options_.dryRun) return report_;
        LinkUnchangedFiles();
        KeepRemovedFiles();
        for (const auto& [path, text] : texts)
            WriteText(newWww_ / path, text);
        WriteRecord(newRecord_, newWww_.parent_path() / ReleaseStore::RecordName);
        store_.Commit(release_);
        store_.Prune(options_.keepReleases);
        return report_;
    }

    void MakeFolders(const std::vector<Item>& items) const {
        std::set<fs::path> folders;
        for (const Item& item : items)
            folders.insert(fs::path(item.path).parent_path());
        for (const auto& [path, file] : oldRecord_.files) {
            if (!IsReplaced(options_, path)) folders.insert(fs::path(path).parent_path());
        }
        for (const fs::path& folder : folders)
            fs::create_directories(newWww_ / folder);
    }

    void PublishItems(const std::vector<Item>& items) {
        Progress progress(options_.dryRun ? "Comparing" : "Publishing", items.size());
        auto problems = ForEach(items.size(), options_.threads, [&](std::size_t index) {
            PublishItem(items[index], progress);
            progress.AddFile();
        });
        if (!problems.empty()) throw Refused{std::move(problems)};
    }

    void PublishItem(const Item& item, Progress& progress) {
        const BytesRead addBytes = [&](std::size_t bytes) { progress.AddBytes(bytes); };
        const Stamp stamp = StampOf(item.source);
        const auto old = oldRecord_.files.find(item.path);
        const bool isOld = old != oldRecord_.files.end();
        if (isOld && (old->second.stamp == stamp ||
                      WouldEqual(item.source, item.form, oldWww_ / item.path, addBytes))) {
            Note(item.path, {old->second.content, ReliableStamp(stamp)}, Fate::Unchanged, 0);
            return;
        }
        const fs::path target = options_.dryRun ? fs::path() : newWww_ / item.path;
        const Content content = Write(item.source, item.form, target, addBytes);
        CheckContent(item, content, isOld ? &old->second.content : nullptr);
        Note(item.path, {content, ReliableStamp(stamp)}, isOld ? Fate::Changed : Fate::New,
             content.size);
    }

    static void CheckContent(const Item& item, const Content& content, const Content* old) {
        const std::string name = Printable(item.source.string());
        if (item.path.starts_with(GamePrefix) && content.size > LargestListed) {
            throw std::runtime_error(name + ": is larger than the list can tell, 4 GiB");
        }
        if (!item.path.starts_with(GamePrefix) && !item.path.starts_with(BasePrefix) &&
            content.crc == 0) {
            throw std::runtime_error(name + ": has the CRC 0, which launchers take for none");
        }
        if (old && old->size == content.size && old->crc == content.crc) {
            throw std::runtime_error(
                name +
                ": differs from the published file, but has its size and CRC, so that "
                "launchers would keep the old one; change a byte of it");
        }
    }

    void LinkUnchangedFiles() const {
        std::vector<const std::string*> paths;
        for (const auto& [path, fate] : report_.fates) {
            if (fate == Fate::Unchanged) paths.push_back(&path);
        }
        const auto problems = ForEach(paths.size(), options_.threads,
                                      [&](std::size_t index) { Link(*paths[index]); });
        if (!problems.empty()) throw std::runtime_error(problems.front());
    }

    void Link(const std::string& path) const {
        const fs::path from = oldWww_ / path;
        const fs::path to = newWww_ / path;
        if (::link(from.c_str(), to.c_str()) != 0) {
            throw std::runtime_error(Printable(to.string()) + ": " +
                                     std::generic_category().message(errno));
        }
    }

    void Note(const std::string& path, const RecordedFile& file, Fate fate,
              std::uint64_t bytesWritten) {
        const std::lock_guard guard(mutex_);
        newRecord_.files[path] = file;
        report_.fates[path] = fate;
        report_.bytesServed += file.content.size;
        report_.bytesWritten += bytesWritten;
    }

    /// What the options do not bring stays.
    void CarryOver() {
        for (const auto& [path, file] : oldRecord_.files) {
            if (!IsReplaced(options_, path)) Note(path, file, Fate::Unchanged, 0);
        }
    }

    void NoteRemovals(const std::vector<Item>& items) {
        newRecord_.removed = oldRecord_.removed;
        for (const auto& [path, file] : oldRecord_.files) {
            if (newRecord_.files.contains(path)) continue;
            newRecord_.removed[path] = {SecondsNow()};
            report_.fates[path] = Fate::Removed;
        }
        // A name that came back, if only in another spelling, must not be called deleted.
        std::set<std::wstring> present;
        for (const Item& item : items)
            present.insert(WindowsKey(item.path));
        std::erase_if(newRecord_.removed, [&](const auto& removed) {
            return present.contains(WindowsKey(removed.first));
        });
    }

    /// Whoever has read an earlier list may still ask for what that list names.
    void KeepRemovedFiles() const {
        const std::int64_t oldest =
            SecondsNow() - std::int64_t{options_.keepRemovedDays} * 24 * 60 * 60;
        for (const auto& [path, removal] : newRecord_.removed) {
            if (removal.when <= oldest || !fs::exists(oldWww_ / path)) continue;
            // Where a folder has taken a file's name, or a file a folder's, there is no room.
            std::error_code noRoom;
            fs::create_directories((newWww_ / path).parent_path(), noRoom);
            fs::create_hard_link(oldWww_ / path, newWww_ / path, noRoom);
        }
    }

    /// The lists and the updater's answers, by their paths.
    std::map<std::string, std::string> MakeTexts() {
        std::map<std::string, std::string> texts;
        std::vector<ListEntry> game;
        std::vector<ListEntry> base;
        for (const auto& [path, file] : newRecord_.files) {
            if (path.starts_with(GamePrefix)) {
                game.push_back({path.substr(GamePrefix.size()), file.content});
            } else if (path.starts_with(BasePrefix)) {
                base.push_back({path.substr(BasePrefix.size()), file.content});
            } else if (const Program* program = FindProgram(path)) {
                texts[std::string(program->answer)] = UpdaterAnswer(file.content);
            }
        }
        std::vector<std::string> deleted;
        for (const auto& [path, removal] : newRecord_.removed) {
            if (path.starts_with(GamePrefix)) deleted.push_back(path.substr(GamePrefix.size()));
        }
        if (!game.empty()) {
            texts[GameList] = FileList(game, deleted);
            gameFiles_ = game.size();
        }
        if (!base.empty()) texts[BaseList] = FileList(base, {});
        for (const auto& [path, text] : texts) {
            if (text.size() > LongestList) {
                throw Refused{{path + ": would be longer than the 8 MiB that the installer reads"}};
            }
        }
        return texts;
    }

    bool Differs(const std::map<std::string, std::string>& texts) const {
        if (!current_) return true;
        const bool sameFiles = std::ranges::all_of(
            report_.fates, [](const auto& entry) { return entry.second == Fate::Unchanged; });
        return !sameFiles || std::ranges::any_of(texts, [&](const auto& entry) {
            return ReadText(oldWww_ / entry.first) != entry.second;
        });
    }

    /// Nothing new: only the stamps are noted, so that the next run need not compare again.
    void KeepRelease() {
        const fs::path file = store_.RecordFile(*current_);
        const fs::path fresh = file.string() + ".new";
        WriteRecord(newRecord_, fresh);
        fs::rename(fresh, file);
        store_.Discard(release_);
    }

    const Options& options_;
    ReleaseStore store_;
    std::optional<unsigned> current_;
    unsigned release_;
    Record oldRecord_;
    fs::path oldWww_;
    fs::path newWww_;
    std::optional<std::size_t> gameFiles_;
    std::mutex mutex_;
    Record newRecord_;  ///< guarded by mutex_ while items are published
    Report report_;     ///< the same
};

}  // namespace

Report Run(const Options& options) {
    return Publisher(options).Run();
}

}  // namespace Publish
