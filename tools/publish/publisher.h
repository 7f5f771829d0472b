#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "content.h"
#include "names.h"
#include "programs.h"
#include "record.h"
#include "release_store.h"

namespace Publish {

struct Options {
    std::filesystem::path tree;
    /// What is not given stays as it is in the release that is served now.
    std::optional<std::filesystem::path> game;
    std::optional<std::filesystem::path> base;
    std::array<std::optional<std::filesystem::path>, Programs.size()> programs;
    bool dryRun = false;
    unsigned keepReleases = 3;
    unsigned keepRemovedDays = 7;
    unsigned threads = 1;
};

/// The input cannot be published; nothing was changed.
struct Refused {
    std::vector<std::string> problems;
};

enum class Fate { New, Changed, Unchanged, Removed };

/// What a run has done, or would do.
struct Report {
    std::optional<unsigned> release;    ///< none when nothing differs from what is served
    std::map<std::string, Fate> fates;  ///< by the path in the served tree
    std::uint64_t bytesWritten = 0;
    std::uint64_t bytesServed = 0;
    std::optional<std::size_t> gameFiles;  ///< in the list, if there is one
};

/// Publishes the input as a new release and serves it. Throws Refused for input that must not
/// reach players, and std::runtime_error when the disk refuses; in both cases the release that was
/// served before is served on.
Report Run(const Options& options);

}  // namespace Publish
