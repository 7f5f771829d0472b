#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Launcher {

/// Looks for copies of the game: in the program folders, the user's local data and the fixed
/// drives, down to two levels below each. A folder is one when a launcher or a client lies in it
/// under a plain name. Reparse points are not entered.
///
/// onVisit is told each folder that is looked at, onFound each copy, once whatever the case of its
/// path; both may be empty and are called on the searching thread. isCancelled is asked before each
/// folder. Returns the copies in the order of finding.
std::vector<std::wstring> FindInstalledCopies(
    const std::function<void(const std::wstring&)>& onVisit,
    const std::function<void(const std::wstring&)>& onFound,
    const std::function<bool()>& isCancelled);

}  // namespace Launcher
