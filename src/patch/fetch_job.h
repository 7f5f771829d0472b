#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>

#include "patch/crc32.h"
#include "patch/old_copies.h"
#include "patch/update_list.h"

namespace Launcher {

/// One file to fetch, and where it goes.
struct FetchJob {
    std::wstring url;
    std::wstring finalPath;
    std::wstring partPath;     ///< where it comes down, beside finalPath
    std::string expectedHash;  ///< CRC-32 of the payload in decimal
    std::uint32_t expectedSize = 0;
    bool replaceExisting = false;  ///< a file stood at finalPath when the pass began
};

/// baseUrl and installFolder end in a separator. Nothing for a name that must not be written
/// (IsPathInsideFolder).
std::optional<FetchJob> MakeFetchJob(const std::string& baseUrl, const std::wstring& installFolder,
                                     const ManifestEntry& entry, bool replaceExisting);

/// What a running job tells its watchers. Any thread.
struct FetchMeter {
    std::atomic<std::uint64_t> bytes = 0;
    std::atomic<double> bytesPerSecond = 0;  ///< 0 until it was measured once
};

/// Fetches the file, checks its size and, while it streams, its hash, and puts it in place. On
/// failure, or when a stop is requested, the old file stands where it stood, whole, and the part
/// is gone. A worker's thread.
bool RunFetchJob(const FetchJob& job, OldCopies& oldCopies, FetchMeter& meter,
                 const std::stop_token& stop);

/// The CRC of the payload of a wrapped file that comes in blocks. Its place follows from the size
/// that the list tells, not from the file; below 21 bytes there is none, and the CRC is 0.
class PayloadCrc {
public:
    explicit PayloadCrc(std::uint32_t fileSize);
    void Update(std::span<const std::byte> block);
    std::uint32_t Value() const { return crc_.Value(); }

private:
    std::uint64_t end_;
    std::uint64_t position_ = 0;
    Crc32 crc_;
};

/// Speed over steps of at least 250 ms.
class RateMeter {
public:
    explicit RateMeter(std::uint64_t nowMilliseconds) : measuredAt_(nowMilliseconds) {}
    /// Bytes per second since the last measure, once enough time has passed.
    std::optional<double> Measure(std::uint64_t nowMilliseconds, std::uint64_t done);

private:
    std::uint64_t measuredAt_;
    std::uint64_t doneThen_ = 0;
};

}  // namespace Launcher
