#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "publisher.h"

namespace Publish {

inline constexpr std::string_view GamePrefix = "patcher/get/";
inline constexpr std::string_view BasePrefix = "patcher/base/";

/// A file that is to be published.
struct Item {
    std::string path;  ///< in the served tree
    std::filesystem::path source;
    Form form = Form::Plain;
};

struct Input {
    std::vector<Item> items;            ///< sorted by path
    std::vector<std::string> problems;  ///< one text a name, for the operator
};

/// Looks through the folders and programs of the options and judges every name; reads of files
/// only what tells whether a program is the right one.
Input CollectInput(const Options& options);

/// The path belongs to a part of the tree that the options bring anew.
bool IsReplaced(const Options& options, std::string_view path);

/// Text for a terminal: bytes that are not UTF-8, and control characters, as "\xNN".
std::string Printable(std::string_view text);

}  // namespace Publish
