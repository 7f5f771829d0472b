#pragma once

#include <string>
#include <string_view>

/// Finds names without regard to case. Any thread.
namespace Platform::Host {

/// The suffix on disk of a file that goes with its last handle. No Windows name can hold it.
inline constexpr char DeleteOnCloseMark = '|';

/// The name under which Windows programs know an entry on disk.
std::string_view PlainName(std::string_view entry);

/// An entry of the open folder that Windows takes for the same name. The names of a folder are read
/// once and then kept up to date by what the system tells of changes (inotify), so that many
/// lookups of missing files do not read it again and again.
bool FindEntry(int folder, std::string_view name, std::string& entry);

}  // namespace Platform::Host
