#include "patch/patch_pipeline.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <future>
#include <optional>
#include <stop_token>

#include "common/boot_log.h"
#include "common/worker.h"
#include "patch/comparison.h"
#include "patch/disk_scan.h"
#include "patch/download.h"
#include "patch/fetch_job.h"
#include "patch/file_names.h"
#include "patch/installed_file.h"
#include "patch/old_copies.h"
#include "patch/update_list.h"

namespace Launcher {
namespace {

constexpr int LinesPerTick = 10;
constexpr double ListTimeLimit = 5.0;
constexpr std::size_t HashBufferSize = 1'048'576;
constexpr std::size_t FilesForAReader = 1000;
constexpr std::size_t MostReaders = 4;

float Share(std::uint64_t done, std::uint64_t total) {
    return total == 0 ? 0.0F
                      : static_cast<float>(static_cast<double>(done) / static_cast<double>(total));
}

}  // namespace

/// All that belongs to one pass. It outlives its place in the pipeline while a worker that was told
/// to stop is still on its way.
struct PatchPipeline::Pass {
    Pass(std::string url, std::wstring folder, bool repair)
        : baseUrl(std::move(url)),
          installFolder(std::move(folder)),
          depth(repair ? HashDepth::Content : HashDepth::Trailer),
          oldCopies(installFolder) {}

    void Prepare();
    bool FetchList(const std::stop_token& stop);
    std::string_view ListText() const;
    bool HashFiles(const std::stop_token& stop, bool onlyMissing);
    std::size_t ReaderCount() const;
    const ManifestEntry& Queued() const { return remote[queue[queueIndex]]; }

    const std::string baseUrl;
    const std::wstring installFolder;
    const HashDepth depth;

    bool isPrepared = false;
    DiskScan onDisk;
    OldCopies oldCopies;

    std::optional<tolvanweb::Download> list;  ///< until it is parsed
    std::size_t parsed = 0;                   ///< bytes of its body
    bool noResponse = false;

    std::vector<ManifestEntry> remote;
    std::vector<std::optional<InstalledFile>> local;  ///< entry for entry beside remote
    std::atomic<std::size_t> hashedCount = 0;

    std::vector<std::uint32_t> queue;  ///< indices into remote
    std::size_t queueIndex = 0;
    std::uint64_t queueBytesDone = 0;
    double lastSpeed = 0;
    FetchMeter meter;

    Worker worker;  ///< the last member: it has ended before what it works on goes
};

void PatchPipeline::Pass::Prepare() {
    oldCopies.CleanUp();
    onDisk = DiskScan(installFolder);
    isPrepared = true;
}

bool PatchPipeline::Pass::FetchList(const std::stop_token& stop) {
    tolvanweb::Download& download = list.emplace();
    download.timeLimit = ListTimeLimit;
    const std::stop_callback cancel(stop, [&] { download.Cancel(); });
    if (download.Configure(tolvanweb::FlagBlocking, baseUrl + "scripts/index.txt") !=
        tolvanweb::ConfigureReady) {
        return false;
    }
    if (!download.Start()) {
        noResponse = download.status == tolvanweb::StatusNoResponse;
        return false;
    }
    return true;
}

std::string_view PatchPipeline::Pass::ListText() const {
    const auto body = list->Body();
    return {reinterpret_cast<const char*>(body.data()), body.size()};
}

bool PatchPipeline::Pass::HashFiles(const std::stop_token& stop, bool onlyMissing) {
    std::atomic<std::size_t> next = 0;
    const auto hash = [&] {
        std::vector<std::byte> buffer(HashBufferSize);
        for (;;) {
            const std::size_t i = next.fetch_add(1, std::memory_order_relaxed);
            if (i >= remote.size() || stop.stop_requested()) return;
            // A name that is never written is not read either: it may be a device.
            if ((!onlyMissing || !local[i]) && IsPathInsideFolder(remote[i].path)) {
                local[i] = HashInstalledFile(installFolder + remote[i].path, depth, stop, buffer);
            }
            ++hashedCount;
        }
    };
    // What one of them throws, for want of memory, reaches this thread.
    std::vector<std::future<void>> others;
    for (std::size_t reader = 1; reader < ReaderCount(); ++reader)
        others.push_back(std::async(std::launch::async, hash));
    hash();
    for (std::future<void>& other : others)
        other.get();
    return !stop.stop_requested();
}

/// How many threads share a hashing out. Looking at the ends of many files is mostly waiting, for
/// the disk when its cache is cold, so a few at once are faster whatever the number of cores; whole
/// files are read one after another, since a disk reads fastest in a row.
std::size_t PatchPipeline::Pass::ReaderCount() const {
    if (depth == HashDepth::Content) return 1;
    return std::min(remote.size() / FilesForAReader + 1, MostReaders);
}

PatchPipeline::PatchPipeline() = default;
PatchPipeline::~PatchPipeline() = default;

void PatchPipeline::Configure(std::string baseUrl, std::wstring installFolder) {
    baseUrl_ = std::move(baseUrl);
    installFolder_ = std::move(installFolder);
    if (!installFolder_.empty() && !installFolder_.ends_with(L'\\') &&
        !installFolder_.ends_with(L'/')) {
        installFolder_ += L'\\';
    }
}

void PatchPipeline::Begin(bool repair) {
    if (installFolder_.empty()) {
        BootLog("patch: refused -- no install folder is configured");
        return;
    }
    Stop();
    progress_ = {};
    progress_.state = State::Manifest;
    pass_ = std::make_unique<Pass>(baseUrl_, installFolder_, repair);
    if (ReapRetired()) pass_->Prepare();
}

void PatchPipeline::Stop() {
    if (!pass_) return;
    pass_->worker.RequestStop();
    retired_.push_back(std::move(pass_));
    ReapRetired();
}

void PatchPipeline::Shutdown() {
    Stop();
    retired_.clear();
}

/// True when no earlier pass has a worker that could still touch the folder.
bool PatchPipeline::ReapRetired() {
    std::erase_if(retired_, [](const std::unique_ptr<Pass>& pass) {
        return pass->worker.Poll() != Worker::Status::Running;
    });
    return retired_.empty();
}

State PatchPipeline::Tick() {
    if (!pass_) return progress_.state;
    if (!pass_->isPrepared) {
        if (!ReapRetired()) return progress_.state;
        pass_->Prepare();
    }
    try {
        Step();
    } catch (const std::exception&) {
        // A list that fits no memory. What there is of it goes first, to make room for the text.
        pass_.reset();
        Fail(State::ErrFatal, L"The update list was empty or could not be read.");
    }
    // The lists of a large game are large, and an ended pass has no use for them.
    if (!IsPatching(progress_.state)) pass_.reset();
    return progress_.state;
}

void PatchPipeline::Step() {
    switch (progress_.state) {
        case State::Manifest:
            TickManifest();
            break;
        case State::Parse:
            TickParse();
            break;
        case State::Compare:
            TickCompare();
            break;
        case State::Update:
            TickUpdate();
            break;
        case State::Verify:
            TickVerify();
            break;
        default:
            break;
    }
}

void PatchPipeline::Fail(State state, std::wstring text) {
    progress_.state = state;
    progress_.errorText = std::move(text);
}

void PatchPipeline::TickManifest() {
    Pass& pass = *pass_;
    const Worker::Status status = pass.worker.Poll();
    if (status == Worker::Status::Running) return;
    if (status == Worker::Status::Idle) {
        pass.worker.Start([&pass](const std::stop_token& stop) { return pass.FetchList(stop); });
        return;
    }

    pass.worker.Join();
    if (status == Worker::Status::Done) {
        if (pass.ListText().empty())
            return Fail(State::ErrFatal, L"The update list came back empty.");
        progress_.state = State::Parse;
    } else if (pass.noResponse) {
        Fail(State::ErrNetwork, L"The update server did not respond.");
    } else {
        Fail(State::ErrDownload, L"The update list could not be downloaded.");
    }
}

void PatchPipeline::TickParse() {
    Pass& pass = *pass_;
    const std::string_view text = pass.ListText();
    for (int i = 0; i < LinesPerTick && pass.parsed < text.size(); ++i) {
        const std::size_t end = std::min(text.find('\n', pass.parsed), text.size());
        if (auto entry = ParseLine(text.substr(pass.parsed, end - pass.parsed))) {
            pass.remote.push_back(std::move(*entry));
        }
        pass.parsed = end + 1;
    }
    if (pass.parsed < text.size()) return;

    pass.list.reset();
    if (pass.remote.empty()) {
        return Fail(State::ErrFatal, L"The update list was empty or could not be read.");
    }
    pass.local.resize(pass.remote.size());
    progress_.filesTotal = static_cast<std::int32_t>(pass.remote.size());
    progress_.state = State::Compare;
}

void PatchPipeline::PublishHashing() {
    const std::size_t hashed = pass_->hashedCount;
    progress_.filesDone = static_cast<std::int32_t>(hashed);
    progress_.fraction = Share(hashed, pass_->remote.size());
}

void PatchPipeline::StartHashing(bool onlyMissing) {
    Pass& pass = *pass_;
    pass.hashedCount = 0;
    pass.worker.Start([&pass, onlyMissing](const std::stop_token& stop) {
        return pass.HashFiles(stop, onlyMissing);
    });
}

/// True when nothing has to be fetched.
bool PatchPipeline::Compare() {
    Pass& pass = *pass_;
    Comparison comparison = CompareLists(pass.remote, pass.local);
    pass.queue = std::move(comparison.queue);
    pass.queueIndex = 0;
    pass.queueBytesDone = 0;
    progress_.filesDone = 0;
    progress_.filesTotal = static_cast<std::int32_t>(pass.queue.size());
    progress_.bytesDone = 0;
    progress_.bytesTotal = comparison.bytesTotal;
    const std::size_t listed = pass.remote.size();
    const std::size_t queued = pass.queue.size();
    BootLog("compare: up to date " + std::to_string(listed - queued) + " of " +
            std::to_string(listed) + ", queued " + std::to_string(queued));
    return pass.queue.empty();
}

void PatchPipeline::TickCompare() {
    const Worker::Status status = pass_->worker.Poll();
    if (status == Worker::Status::Idle) return StartHashing(false);
    if (status == Worker::Status::Running) return PublishHashing();

    pass_->worker.Join();
    if (status == Worker::Status::Failed) {
        return Fail(State::ErrFatal, L"Verifying the installed files was interrupted.");
    }
    if (Compare()) {
        progress_.state = State::Ready;
        progress_.fraction = 1.0F;
    } else {
        progress_.state = State::Update;
    }
}

void PatchPipeline::TickUpdate() {
    Pass& pass = *pass_;
    const Worker::Status status = pass.worker.Poll();
    if (status == Worker::Status::Running) return PublishFetching();
    if (status != Worker::Status::Idle) {
        pass.worker.Join();
        if (status == Worker::Status::Failed) {
            return Fail(State::ErrDownload,
                        L"A file could not be downloaded or did not verify: " + pass.Queued().path);
        }
        FinishFetch();
    }
    if (pass.queueIndex == pass.queue.size()) {
        progress_.state = State::Verify;
    } else {
        StartFetch();
    }
}

void PatchPipeline::PublishFetching() {
    Pass& pass = *pass_;
    progress_.fileBytesTotal = pass.Queued().size;
    progress_.fileBytesDone = std::min<std::uint64_t>(pass.meter.bytes, progress_.fileBytesTotal);
    progress_.bytesDone = pass.queueBytesDone + progress_.fileBytesDone;
    const double speed = pass.meter.bytesPerSecond;
    // While the meter has nothing to tell the last reading stays on the screen.
    if (speed > 0) pass.lastSpeed = speed;
    progress_.bytesPerSecond = pass.lastSpeed;
    progress_.fraction = Share(progress_.bytesDone, progress_.bytesTotal);
}

void PatchPipeline::FinishFetch() {
    Pass& pass = *pass_;
    pass.queueBytesDone += pass.Queued().size;
    ++pass.queueIndex;
    progress_.filesDone = static_cast<std::int32_t>(pass.queueIndex);
    progress_.bytesDone = pass.queueBytesDone;
    progress_.currentFile.clear();
    progress_.fileBytesDone = 0;
    progress_.fileBytesTotal = 0;
}

void PatchPipeline::StartFetch() {
    Pass& pass = *pass_;
    const ManifestEntry& entry = pass.Queued();
    progress_.currentFile = entry.path;
    progress_.fileBytesDone = 0;
    progress_.fileBytesTotal = entry.size;
    pass.meter.bytes = 0;
    pass.meter.bytesPerSecond = 0;
    const auto job =
        MakeFetchJob(pass.baseUrl, pass.installFolder, entry, pass.onDisk.Contains(entry.path));
    pass.worker.Start([&pass, job](const std::stop_token& stop) {
        return job && RunFetchJob(*job, pass.oldCopies, pass.meter, stop);
    });
}

void PatchPipeline::TickVerify() {
    Pass& pass = *pass_;
    const Worker::Status status = pass.worker.Poll();
    if (status == Worker::Status::Idle) {
        for (std::size_t i = 0; i < pass.queueIndex; ++i)
            pass.local[pass.queue[i]].reset();
        return StartHashing(true);
    }
    if (status == Worker::Status::Running) return PublishHashing();

    pass.worker.Join();
    if (!Compare()) {
        return Fail(State::ErrFatal, L"Some files still do not match after updating.");
    }
    progress_.state = State::Ready;
    progress_.fraction = 1.0F;
}

}  // namespace Launcher
