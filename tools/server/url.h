#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Server {

/// "%41" becomes "A"; a "%" without two hexadecimal digits stays.
std::string DecodePercent(std::string_view text);

/// What stands behind "NAME=" in a query, decoded.
std::optional<std::string> QueryValue(std::string_view query, std::string_view name);

/// A request's target, taken apart.
struct Target {
    std::string path;      ///< decoded, without the leading slash
    std::string rawQuery;  ///< as sent
};

/// Empty when the target is no absolute path, or a path that would leave the tree.
std::optional<Target> ParseTarget(std::string_view target);

}  // namespace Server
