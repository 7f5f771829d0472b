#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

#include "content.h"

namespace Publish {

struct RecordedFile {
    Content content;
    Stamp stamp;  ///< of the source; all zero when it cannot be relied on
};

struct RecordedRemoval {
    std::int64_t when = 0;  ///< seconds since 1970
};

/// What the publisher knows about a release: every file of it by its path in the served tree, and
/// those that earlier releases had. Kept beside the served tree, as text with a line a file.
struct Record {
    std::map<std::string, RecordedFile> files;
    std::map<std::string, RecordedRemoval> removed;
};

/// Throws std::runtime_error for a file that is missing or no record.
Record ReadRecord(const std::filesystem::path& file);
void WriteRecord(const Record& record, const std::filesystem::path& file);

}  // namespace Publish
