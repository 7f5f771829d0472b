#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Files that go with their last handle. Their name on disk carries DeleteOnCloseMark, and a lock
/// tells whether that handle still lives; when its process was killed, whoever comes upon the file
/// removes it and goes on as if it were not there.
namespace Platform::Host {

/// True when the entry is such a file and nobody holds it; it is gone then.
bool IsAbandoned(int folder, const std::string& entry);

/// Removes the abandoned ones of a folder. True when there was any.
bool RemoveAbandoned(int folder);

}  // namespace Platform::Host
