#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "content.h"

/// The texts that the launcher reads. Pure.
namespace Publish {

struct ListEntry {
    std::string name;
    Content content;
};

/// scripts/index.txt and scripts/base.php: "name=crc TAB size" a line, then "deleted:name" a line.
std::string FileList(const std::vector<ListEntry>& entries,
                     const std::vector<std::string>& deleted);

/// The answer of scripts/updater.php for a program: "crc size".
std::string UpdaterAnswer(const Content& content);

/// The installer reads no list above this size.
inline constexpr std::size_t LongestList = 8'388'608;
/// The list gives a file 32 bits for its size, wrapper included.
inline constexpr std::uint64_t LargestListed = 0xFFFFFFFF;

}  // namespace Publish
