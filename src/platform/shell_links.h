#pragma once

#include <string>

#include "platform/error.h"

/// Shell links: the files (".lnk") behind shortcuts.
namespace Platform {

struct ShellLink {
    std::wstring target;  ///< full path
    std::wstring workingFolder;
    std::wstring description;
    std::wstring icon;  ///< full path of the file whose first icon is the link's
};

/// Writes the link over whatever stood there. The calling thread holds a ShellApartment.
[[nodiscard]] Error SaveShellLink(const std::wstring& linkPath, const ShellLink& link);
[[nodiscard]] Error LoadShellLink(const std::wstring& linkPath, ShellLink& link);

/// What the shell's services ask of a thread that calls them: one for the thread's whole work.
class ShellApartment {
public:
    ShellApartment();
    ~ShellApartment();
    ShellApartment(const ShellApartment&) = delete;
    ShellApartment& operator=(const ShellApartment&) = delete;

private:
    [[maybe_unused]] bool entered_ = false;  ///< the host has nothing to leave
};

}  // namespace Platform
