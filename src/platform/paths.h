#pragma once

#include <string>

#include "platform/error.h"

/// Where things are on this machine. Folders come without a trailing separator unless told.
namespace Platform {

/// Shell folders, with their CSIDL values.
enum class ShellFolder : int {
    Personal = 0x05,
    Programs = 0x02,  ///< the user's Start menu, Programs
    DesktopDirectory = 0x10,
    AppData = 0x1A,
    LocalAppData = 0x1C,
    CommonAppData = 0x23,
    Windows = 0x24,
    System = 0x25,
    ProgramFiles = 0x26,
    Profile = 0x28,
    SystemX86 = 0x29,
    ProgramFilesX86 = 0x2A,
    ProgramFilesCommon = 0x2B,
};

/// Full path of the running program's file as it was when the program started; empty when the
/// system does not tell, or when it is 260 characters or longer.
std::wstring OwnPath();

/// Empty when the system does not know the folder.
std::wstring GetShellFolder(ShellFolder folder);
/// The folder of the system's own programs; "C:\Windows\System32" when the system does not tell.
std::wstring GetSystemFolder();
/// The folder for temporary files, with a trailing separator, or an empty string.
std::wstring GetTempFolder();

/// Relative paths count from here afterwards.
[[nodiscard]] Error ChangeCurrentFolder(const std::wstring& folder);

/// Libraries load from the system folder and folders added by the program, from nowhere else.
void RestrictLibrarySearch();

/// The variable's value; empty when it is absent or empty.
std::wstring GetEnvironmentText(const std::wstring& name);

}  // namespace Platform
