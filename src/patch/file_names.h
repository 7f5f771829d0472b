#pragma once

#include <string_view>

/// Which names from a list may become files. Windows reads more into a name than a list's author
/// may have meant (devices, streams, dropped dots and blanks), and a hostile list may mean just
/// that. Pure functions, the same on every platform.
namespace Launcher {

/// A file or folder can have this name on Windows: not empty, no control character, none of
/// <>:"/\|?*, no dot or blank at the end, and no device ("NUL", "com1.txt"). "." and ".." are none.
bool IsFileName(std::wstring_view name);

/// A path relative to a folder that names a file inside it: every part is a file name, ".", ".."
/// or empty (a doubled separator), the last is a file name, and no ".." ever climbs above the
/// folder. Both separators count.
bool IsPathInsideFolder(std::wstring_view path);

}  // namespace Launcher
