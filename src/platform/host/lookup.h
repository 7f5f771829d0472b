#pragma once

#include <string>
#include <string_view>

#include "platform/error.h"
#include "platform/host/descriptor.h"
#include "platform/host/host_path.h"

/// Finds things on the disk for a Windows path. Names are tried as given first, which costs one
/// call; when that finds nothing, without regard to case. No call follows a Linux symbolic link by
/// itself: links are read and followed here, as long as they stay inside the machine.
namespace Platform::Host {

/// The folder that holds what a path names, and the name to use in it.
struct Place {
    Descriptor folder;       ///< O_PATH
    std::string name;        ///< "." for a drive's root
    std::string folderText;  ///< machine-relative
};

/// PathNotFound when the folder is missing. The entry itself may be missing: nobody looks yet.
[[nodiscard]] Error FindPlace(const HostPath& path, Place& place);
[[nodiscard]] Error FindPlace(const std::wstring& path, Place& place);

/// Opens the entry itself, under its name as given or else one that differs in case only, which
/// then is place.name. Flags may not hold O_CREAT, O_PATH or O_DIRECTORY. 0 or an errno: ENOENT
/// when there is none, ELOOP for a link.
int OpenEntry(Place& place, int flags, Descriptor& opened);

/// True when there is an entry, after which place.name is its name.
bool EntryExists(Place& place);

/// Where the link at the place points to. UnresolvableLink when that is outside the machine.
[[nodiscard]] Error ReadLink(const Place& place, HostPath& target);

/// Opens what the path names, following links. Flags may not hold O_CREAT or O_PATH.
[[nodiscard]] Error OpenFollowing(const HostPath& path, int flags, Descriptor& opened);

/// open of a machine-relative text that meets no link. -1 and errno.
int OpenExact(const char* text, int flags);

/// How many links a path may lead through.
inline constexpr int MostLinks = 40;

}  // namespace Platform::Host
