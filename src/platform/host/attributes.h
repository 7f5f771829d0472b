#pragma once

#include <cstdint>
#include <sys/stat.h>

#include "platform/error.h"
#include "platform/host/descriptor.h"

/// Windows attributes of files and folders of the machine. Read-only files are those that their
/// owner may not write to; hidden, system, not indexed, and read-only on a folder, stand in the
/// extended attribute "user.tolvan.attributes", which most files do not have. AttributeArchive is
/// not kept: it is what an entry without other attributes shows.
namespace Platform::Host {

/// From an open file or folder.
std::uint32_t ReadAttributes(int descriptor, const struct stat& status);

/// What a link points to. One whose target is missing may be removed as either kind.
enum class LinkTarget { Folder, File, Missing };
LinkTarget ReadLinkTarget(int folder, const char* name);

/// Of a link, which has none of its own.
std::uint32_t LinkAttributes(LinkTarget target);

/// Replaces all of them. The error when the disk cannot hold such attributes.
[[nodiscard]] Error WriteAttributes(int descriptor, const struct stat& status,
                                    std::uint32_t attributes);

/// The owner may write to it: files change, and a folder's entries come and go. Root is asked the
/// same as others, so that missing rights can be rehearsed by anybody.
bool IsWritable(const struct stat& status);
bool IsWritable(const Descriptor& folder);

}  // namespace Platform::Host
