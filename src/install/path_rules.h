#pragma once

#include <array>
#include <string>

#include "platform/paths.h"

/// Which folders the game may live in. All of it is reentrant and cheap: no tree is walked, and at
/// most one file is made, so a page may ask at every key stroke.
namespace Launcher {

/// The shell folders that must never be taken whole.
inline constexpr std::array SystemFolders{
    Platform::ShellFolder::Windows,         Platform::ShellFolder::System,
    Platform::ShellFolder::SystemX86,       Platform::ShellFolder::ProgramFiles,
    Platform::ShellFolder::ProgramFilesX86, Platform::ShellFolder::ProgramFilesCommon,
    Platform::ShellFolder::Profile,         Platform::ShellFolder::DesktopDirectory,
    Platform::ShellFolder::Personal,        Platform::ShellFolder::AppData,
    Platform::ShellFolder::LocalAppData,    Platform::ShellFolder::CommonAppData,
};

/// Every "/" becomes "\", doubled separators become one (two at the start stay: a network path),
/// and trailing ones are cut, but "C:\" stays. An empty text stays empty.
std::wstring NormalisePath(const std::wstring& text);

/// The folder may be the target of an install, a move or a relink: a full path with a drive or a
/// network share, deeper than the root, that is not one of the system's own folders. A folder
/// below such a folder is allowed.
bool IsSafeFolder(const std::wstring& path);

/// Equal, without regard to case, to one of SystemFolders.
bool IsKnownShellFolder(const std::wstring& path);

/// Begins, without regard to case, with the path of a system location. A plain prefix test.
bool IsProtectedLocation(const std::wstring& path);

/// Whether the page should warn that writing here needs rights: the nearest existing folder
/// refuses a file, or the path lies in a protected location.
bool NeedsElevation(const std::wstring& path);

/// The path without the separators at its end, but not shorter than minimumLength.
std::wstring WithoutTrailingSeparators(std::wstring path, std::size_t minimumLength);

/// Makes the folder with all its parents. True when it stands afterwards.
bool CreateFolderPath(const std::wstring& path);

}  // namespace Launcher
