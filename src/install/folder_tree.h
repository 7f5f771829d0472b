#pragma once

#include <cstdint>
#include <functional>
#include <string>

/// Walks over a folder and all below it. A reparse point (link, junction) is never entered, so no
/// walk leaves its tree.
namespace Launcher {

/// Adds the sizes of all files to bytes and their number to files; the caller zeroes both.
void FolderStat(const std::wstring& folder, std::uint64_t& bytes, std::uint64_t& files);

/// The number of files, counted no further than limit.
int CountFiles(const std::wstring& folder, int limit);

/// The one way to delete a folder with all below it. Refuses, with nothing touched, what
/// IsSafeFolder refuses, whatever way the path is written, and any folder that the machine's own
/// folders or the running program lie in. A reparse point inside goes as itself, and so does one
/// that is the folder. onFile, when given, is called once for each file. What cannot be deleted is
/// left, and the walk goes on; the answer is false then. A folder that is missing is gone: true.
bool RemoveInstallFolder(const std::wstring& folder, const std::function<void()>& onFile);

/// Whether RemoveInstallFolder would refuse the folder.
bool IsProtectedFromDeletion(const std::wstring& folder);

}  // namespace Launcher
