#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/system_facts.h"

/// The game client's program in an install folder. Any thread.
namespace Launcher {

/// The names that a client may have, in the order of preference, on a machine of this kind.
std::vector<std::wstring> ClientFileNames(Platform::Architecture architecture);

/// Full path of the client in the folder; empty when there is none, and for an empty folder. A
/// launcher that lies there under a client's name is no client.
std::wstring FindClient(const std::wstring& folder);

/// True when the file is an executable that carries this program's marker.
bool IsLauncherFile(const std::wstring& path);

/// The ids of the running processes of the folder's client. One with a plain name must also run
/// from that folder; a dotted name is unusual enough to stand alone.
std::vector<std::uint32_t> RunningClients(const std::wstring& folder);
std::size_t CountRunningClients(const std::wstring& folder);

}  // namespace Launcher
