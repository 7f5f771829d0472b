#pragma once

#include <string>
#include <string_view>

/// Windows paths as text; nothing here looks at a disk. Either slash separates.
namespace Launcher {

/// What stands behind the last separator; all of it without one.
std::wstring FileNameOf(std::wstring_view path);

/// What stands before the last separator; empty without one.
std::wstring FolderOf(std::wstring_view path);

/// The two with a separator between them, unless folder ends in one.
std::wstring JoinPath(std::wstring_view folder, std::wstring_view name);

}  // namespace Launcher
