#pragma once

#include <string>
#include <string_view>

/// The machine that the host adapter plays: one folder, named by the environment variable
/// TOLVAN_MACHINE, with a folder "drive_c" (and so on) per drive, "run" for what lives only as long
/// as its processes, and the registry. It is laid out at the first use; a process without the
/// variable ends with a message. Any thread.
namespace Platform::Host {

/// Its absolute path, free of links and without a trailing separator.
const std::string& MachineFolder();

/// A descriptor of that folder for calls that take a name relative to it. Never closed.
int MachineDescriptor();

/// The folder for locks and other files that mean nothing once no process runs.
std::string RunFolder();

std::string RegistryFile();

/// What is to be removed when the machine starts again: a Windows path a line, in UTF-8.
std::string RebootListFile();

/// The Windows path of a file of this machine, or an empty string when it lies elsewhere.
std::wstring WindowsPathOf(std::string_view hostPath);

/// As WindowsPathOf, for a program: one that lies outside the machine, as test programs do, appears
/// as "C:\Program Files (x86)\Tolvan Tests\NAME".
std::wstring WindowsPathOfProgram(std::string_view hostPath);

/// Where a Windows path lies on the host, whether or not something stands there: as far as it
/// exists with the names as they are on the disk, the rest as given. Empty for a path that cannot
/// exist on this machine.
std::string HostPathOf(const std::wstring& path);

}  // namespace Platform::Host
