#include "patch/fetch_job.h"

#include <algorithm>

#include "patch/fetch.h"
#include "patch/file_names.h"
#include "patch/file_placement.h"
#include "patch/file_wrapper.h"
#include "patch/url_path.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"

namespace Launcher {
namespace {

constexpr std::wstring_view PartSuffix = L".part";
constexpr std::uint64_t MeasureMilliseconds = 250;

bool FetchToPart(const FetchJob& job, FetchMeter& meter, const std::stop_token& stop) {
    PayloadCrc crc(job.expectedSize);
    RateMeter rate(Platform::TickMilliseconds());
    const auto onProgress = [&](std::uint64_t done, std::uint64_t) {
        meter.bytes = done;
        if (const auto speed = rate.Measure(Platform::TickMilliseconds(), done)) {
            meter.bytesPerSecond = *speed;
        }
    };
    // A body that has become too long will never verify, and may have no end.
    const auto isCancelled = [&] {
        return stop.stop_requested() || meter.bytes > job.expectedSize;
    };
    const auto onBlock = [&](std::span<const std::byte> block) { crc.Update(block); };
    if (!FetchFile(job.url, job.partPath, onProgress, isCancelled, nullptr, onBlock)) {
        return false;
    }

    Platform::FileInfo info;
    return Platform::Succeeded(Platform::GetFileInfo(job.partPath, info)) &&
           info.size == job.expectedSize && std::to_string(crc.Value()) == job.expectedHash;
}

}  // namespace

std::optional<FetchJob> MakeFetchJob(const std::string& baseUrl, const std::wstring& installFolder,
                                     const ManifestEntry& entry, bool replaceExisting) {
    if (!IsPathInsideFolder(entry.path)) return std::nullopt;
    std::wstring_view name = entry.path;
    if (name.starts_with(DataFolder)) name.remove_prefix(DataFolder.size());

    FetchJob job;
    job.url = Platform::WideFromUtf8(baseUrl + "patcher/get/") + EncodeUrlPath(name);
    job.finalPath = installFolder + entry.path;
    std::ranges::replace(job.finalPath, L'/', L'\\');
    job.partPath = job.finalPath + std::wstring(PartSuffix);
    job.expectedHash = entry.hash;
    job.expectedSize = entry.size;
    job.replaceExisting = replaceExisting;
    return job;
}

bool RunFetchJob(const FetchJob& job, OldCopies& oldCopies, FetchMeter& meter,
                 const std::stop_token& stop) {
    if (FetchToPart(job, meter, stop) &&
        PutInPlace(job.partPath, job.finalPath, job.replaceExisting, oldCopies)) {
        return true;
    }
    // What cannot be removed is overwritten by the next pass.
    (void)Platform::RemoveFile(job.partPath);
    return false;
}

PayloadCrc::PayloadCrc(std::uint32_t fileSize)
    : end_(fileSize > WrapperOverhead ? fileSize - WrapperTrailerSize : 0) {}

void PayloadCrc::Update(std::span<const std::byte> block) {
    const std::uint64_t begin = std::max<std::uint64_t>(position_, WrapperHeaderSize);
    const std::uint64_t end = std::min<std::uint64_t>(position_ + block.size(), end_);
    if (begin < end) {
        crc_.Update(block.subspan(static_cast<std::size_t>(begin - position_),
                                  static_cast<std::size_t>(end - begin)));
    }
    position_ += block.size();
}

std::optional<double> RateMeter::Measure(std::uint64_t nowMilliseconds, std::uint64_t done) {
    const std::uint64_t elapsed = nowMilliseconds - measuredAt_;
    if (elapsed < MeasureMilliseconds) return std::nullopt;
    const double speed =
        static_cast<double>(done - doneThen_) / (static_cast<double>(elapsed) / 1000.0);
    measuredAt_ = nowMilliseconds;
    doneThen_ = done;
    return speed;
}

}  // namespace Launcher
