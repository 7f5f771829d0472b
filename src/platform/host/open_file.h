#pragma once

#include <cstdint>
#include <string>
#include <sys/stat.h>

#include "platform/files.h"
#include "platform/host/descriptor.h"
#include "platform/host/host_path.h"

namespace Platform::Host {

/// What stands behind an open File.
struct OpenFile {
    Descriptor descriptor;
    unsigned access = 0;
    bool isPlainReader = false;  ///< holds the one lock of AddPlainReader

    /// The size when it was opened, until it is asked for once or written to.
    std::uint64_t sizeAtOpening = 0;
    bool knowsSize = false;

    /// For one that goes with this handle: where it stands.
    Descriptor pendingFolder;
    std::string pendingName;
};

/// Finds the file, or makes it, and adds this user to it.
[[nodiscard]] Error OpenShared(const HostPath& path, const OpenOptions& options, OpenFile& file);

/// Lets go of it, and removes it when it goes with its handle.
void CloseShared(OpenFile& file);

}  // namespace Platform::Host
