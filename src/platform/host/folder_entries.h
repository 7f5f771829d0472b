#pragma once

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <utility>

#include "platform/error.h"
#include "platform/host/descriptor.h"
#include "platform/host/errors.h"

namespace Platform::Host {

/// Calls use(const dirent&) for each entry of a folder but "." and "..".
template <class Use>
Error ForEachEntry(Descriptor folder, Use use) {
    struct Close {
        void operator()(DIR* listing) const { ::closedir(listing); }
    };
    const std::unique_ptr<DIR, Close> listing(::fdopendir(folder.Get()));
    if (!listing) return LastError();
    folder.Release();
    for (;;) {
        errno = 0;
        const dirent* entry = ::readdir(listing.get());
        if (entry == nullptr) return LastError();
        const char* name = entry->d_name;
        if (std::strcmp(name, ".") != 0 && std::strcmp(name, "..") != 0) use(*entry);
    }
}

/// The same for a descriptor that the caller keeps, and that may be one of O_PATH.
template <class Use>
Error ForEachEntry(int folder, Use use) {
    Descriptor readable(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return readable ? ForEachEntry(std::move(readable), use) : LastError();
}

}  // namespace Platform::Host
