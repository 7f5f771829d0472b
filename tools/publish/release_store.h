#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/descriptor.h"

/// How published trees lie on the disk:
///
///     TREE/current                 a link to the www folder of the release that is served
///     TREE/releases/000012/www     a whole tree, as a web server serves it
///     TREE/releases/000012/record  what the publisher knows about it
///     TREE/releases/000013.new     a release in the making, or left over from a killed run
///     TREE/releases/000009.old     a release on its way out, or the same
///     TREE/lock                    held by the run that writes
///
/// A file that did not change is one file with a name in each release. The web server serves
/// TREE/current; renaming another link over it is the one instant at which a release takes the
/// place of the one before, for all files at once.
namespace Publish {

enum class Access { Read, Write };

/// The releases of one tree. Every function throws std::runtime_error when the disk refuses.
class ReleaseStore {
public:
    /// For writing, the tree is made when it is missing, locked, and cleared of what killed runs
    /// have left.
    ReleaseStore(std::filesystem::path tree, Access access);

    /// Ascending.
    std::vector<unsigned> Releases() const;
    /// The one that is served.
    std::optional<unsigned> Current() const;

    std::filesystem::path Www(unsigned release) const;
    std::filesystem::path RecordFile(unsigned release) const;

    /// The release that Begin makes and Commit serves; its www folder is empty at first.
    unsigned Next() const;
    std::filesystem::path Begin(unsigned release) const;
    /// Puts the release on the disk for good, then serves it.
    void Commit(unsigned release) const;
    void Discard(unsigned release) const;

    void Serve(unsigned release) const;
    /// Removes all but the newest releases and the one that is served.
    void Prune(unsigned keep) const;

    static constexpr const char* WwwName = "www";
    static constexpr const char* RecordName = "record";

private:
    std::filesystem::path Folder(unsigned release) const;
    std::filesystem::path Draft(unsigned release) const;
    void Lock();
    void RemoveLeftovers() const;
    void Remove(unsigned release) const;

    std::filesystem::path tree_;
    std::filesystem::path releases_;
    Platform::Host::Descriptor lock_;
};

/// "000012"
std::string ReleaseName(unsigned release);

}  // namespace Publish
