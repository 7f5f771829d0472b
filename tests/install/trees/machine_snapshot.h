#pragma once

#include <map>
#include <string>

/// Everything that lies on the drives: full path to kind, attributes and content (or a link's
/// text). Links are not entered. Under Wine without the system's own folder, which has thousands of
/// files, and the drive that the test programs lie on, which is no part of the machine.
using Snapshot = std::map<std::wstring, std::string>;

Snapshot TakeSnapshot();

/// What lies at the path and below, taken out of the snapshot. Keys begin behind the path.
Snapshot TakeOut(Snapshot& snapshot, const std::wstring& path);

/// The first thing in which the two differ, in words; empty when they are the same.
std::string FirstDifference(const Snapshot& before, const Snapshot& after);
