#pragma once

#include <string>

/// What the program changes on its machine, step by step, for tests that end it before any of them.
namespace Platform {

/// Called by the adapters before each change of files, folders, attributes, links, registry and
/// processes, from any thread. In a developer build the steps are counted: with TOLVAN_KILL_AT=N
/// the process ends at once before its Nth step, as a kill from outside would end it;
/// TOLVAN_STEP_LOG names a file (a Windows path, to which a dot and the process id are added) that
/// gets a line "N what subject" for each. A release build has no such code in it.
void CountStep(const char* what, const std::wstring& subject);

}  // namespace Platform
