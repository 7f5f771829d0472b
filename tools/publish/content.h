#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

/// The bytes of what is published: wrapped where the launcher expects it, plain elsewhere. Every
/// function throws std::runtime_error, with the file's name, when reading or writing fails. Any
/// thread.
namespace Publish {

enum class Form {
    Plain,    ///< as it is; the CRC covers the whole file
    Wrapped,  ///< in a TPK1 wrapper, put around it unless it has one; the CRC covers the payload
};

struct Content {
    std::uint64_t size = 0;  ///< of the published file
    std::uint32_t crc = 0;
};

/// Tells one version of a source file from another without reading it. The time of change is in
/// it, which no program can set back.
struct Stamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds
    std::int64_t changed = 0;   ///< nanoseconds
    friend bool operator==(const Stamp&, const Stamp&) = default;
};

Stamp StampOf(const std::filesystem::path& file);

/// Told the count of bytes after each block of a source.
using BytesRead = std::function<void(std::size_t bytes)>;

/// Whether publishing the source in this form would give exactly the published file.
bool WouldEqual(const std::filesystem::path& source, Form form,
                const std::filesystem::path& published, const BytesRead& progress);

/// Reads the source once and writes what is published to a new file; with an empty target it is
/// only read. progress gets the count of bytes after each block. A wrapper that does not fit its
/// payload, and a source that changes meanwhile, are failures.
Content Write(const std::filesystem::path& source, Form form, const std::filesystem::path& target,
              const BytesRead& progress);

}  // namespace Publish
