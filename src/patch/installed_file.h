#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <string>

namespace Launcher {

/// What an installed file was found to be.
struct InstalledFile {
    std::uint32_t crc = 0;   ///< of a wrapped file's payload, of all of a plain file
    std::uint64_t size = 0;  ///< bytes on disk, the wrapper included
};

enum class HashDepth {
    Trailer,  ///< a wrapped file is taken at its own word: only its ends are looked at
    Content,  ///< all of it is read
};

/// Nothing when the file cannot be opened or read, or when a stop is requested meanwhile.
/// buffer is what the reads go through: a stop is seen between two of them. Any thread.
std::optional<InstalledFile> HashInstalledFile(const std::wstring& path, HashDepth depth,
                                               const std::stop_token& stop,
                                               std::span<std::byte> buffer);

}  // namespace Launcher
