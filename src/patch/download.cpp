#include "patch/download.h"

#include <limits>

#include "common/deployment.h"
#include "patch/content_length.h"
#include "patch/read_block.h"
#include "platform/clock.h"
#include "platform/text.h"

namespace tolvanweb {

namespace {

constexpr wchar_t Agent[] = L"Mozilla/5.0 (Windows NT 10.0; Win64; x64)";
constexpr std::size_t BlockSize = 262'144;
constexpr double ProgressInterval = 0.1;  // seconds

/// The one session of all downloads: opened at the first request, never closed.
Platform::Error OpenSharedSession(Platform::HttpSession*& session) {
    static std::mutex lock;
    static std::atomic<Platform::HttpSession*> shared{nullptr};
    session = shared;
    if (session != nullptr) return Platform::Error::None;

    const std::lock_guard guard(lock);
    session = shared;
    if (session != nullptr) return Platform::Error::None;
    auto opened = std::make_unique<Platform::HttpSession>();
    if (const auto error = opened->Open(Agent, std::nullopt); !Succeeded(error)) return error;
    session = opened.release();
    shared = session;
    return Platform::Error::None;
}

}  // namespace

/// Speed and remaining time of one request.
struct Download::Meter {
    double start = Platform::SystemSeconds();
    double lastProgress = start;
    double elapsed = 0.0;
    std::uint64_t received = 0;  ///< bytes of the body

    void Count(std::size_t bytes, Download& download) {
        received += bytes;
        elapsed = Platform::SystemSeconds() - start;
        if (elapsed > 0.0) {
            download.bytesPerSecond =
                static_cast<std::int64_t>(static_cast<double>(received) / elapsed);
        }
        const std::int64_t speed = download.bytesPerSecond;
        if (speed > 0 && download.total > 0) {
            const std::int64_t left = download.total - static_cast<std::int64_t>(received);
            download.etaSeconds =
                left > 0 ? static_cast<double>(left) / static_cast<double>(speed) : 0.0;
        }
    }
    bool IsProgressDue() {
        const double now = start + elapsed;
        if (now - lastProgress <= ProgressInterval) return false;
        lastProgress = now;
        return true;
    }
};

Download::~Download() {
    Cancel();
    if (worker_.joinable()) worker_.join();
}

ConfigureResult Download::Configure(std::uint32_t flags, const std::string& url) {
    Platform::CrackedUrl parts;
    if (!Succeeded(Platform::CrackUrl(Platform::WideFromUtf8(url), parts))) {
        return ConfigureBadUrl;
    }
    flags_ = flags;
    host_ = parts.host;
    path_ = parts.path;
    secure_ = parts.secure || (flags & FlagForceSecure) != 0;
    port_ = parts.port != 0 ? parts.port : Platform::DefaultHttpPort(secure_);

    const auto error = Platform::CheckConnection(Launcher::Deployment::ProbeUrl(),
                                                 [this] { return IsCancelled(); });
    return Succeeded(error) ? ConfigureReady : ConfigureOffline;
}

bool Download::Start() {
    if (worker_.joinable()) worker_.join();
    response.Clear();
    headerLength = 0;
    total = 0;
    bytesPerSecond = 0;
    etaSeconds = 0.0;
    lastError = 0;
    status = StatusRunning;
    if (host_.empty()) {
        status = StatusNoHost;
        return false;
    }
    cancelled = false;
    if ((flags_ & FlagBackground) == 0) return Perform();
    worker_ = std::thread([this] { Perform(); });
    return true;
}

void Download::Cancel() {
    cancelledForGood_ = true;
    cancelled = true;
}

std::span<const std::byte> Download::Body() const {
    const auto bytes = response.Bytes();
    return bytes.size() > headerLength ? bytes.subspan(headerLength) : std::span<const std::byte>();
}

bool Download::Perform() {
    active = true;
    status = StatusRunning;
    DownloadStatus stage = StatusConnectFailed;
    if (const auto error = SendRequest(stage); !Succeeded(error)) {
        return error == Platform::Error::HttpOperationCancelled ? Stop() : Fail(stage, error);
    }
    if (!CaptureHeaders()) {
        return Fail(StatusOutOfMemory, Platform::Error::NotEnoughMemory);
    }
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const std::int64_t length = Launcher::ContentLengthOf(*request_);
    total = length > 0 && length <= most - headerLength ? headerLength + length : 0;
    return ReadBody();
}

/// stage is the status that a failure stands for.
Platform::Error Download::SendRequest(DownloadStatus& stage) {
    stage = StatusConnectFailed;
    Platform::HttpSession* session = nullptr;
    if (const auto error = OpenSharedSession(session); !Succeeded(error)) return error;
    request_.emplace();
    request_->CancelWhen([this] { return IsCancelled(); });
    if (const auto error = request_->Connect(*session, host_, port_); !Succeeded(error)) {
        return error;
    }
    stage = StatusRequestFailed;
    if (const auto error =
            request_->Prepare(path_, secure_, Platform::CertificatePolicy::IgnoreNameAndDate);
        !Succeeded(error)) {
        return error;
    }
    return request_->Send();
}

/// Keeps the low byte of each character and drops NULs.
bool Download::CaptureHeaders() {
    std::string narrow;
    for (const wchar_t character : request_->RawHeaders()) {
        const auto byte = static_cast<char>(character & 0xFF);
        if (byte != '\0') narrow += byte;
    }
    if (!Append(std::as_bytes(std::span(narrow)))) return false;
    headerLength = static_cast<std::uint32_t>(narrow.size());
    return true;
}

bool Download::ReadBody() {
    Meter meter;
    const auto block = std::make_unique<Launcher::ReadBlock<BlockSize>>();
    while (!IsCancelled()) {
        std::size_t got = 0;
        if (const auto error = request_->Read(block->bytes, got); !Succeeded(error)) {
            return error == Platform::Error::HttpOperationCancelled ? Stop()
                                                                    : Fail(StatusReadFailed, error);
        }
        if (got == 0) return Complete();
        if (!Append(std::span(block->bytes).first(got))) {
            return Fail(StatusOutOfMemory, Platform::Error::NotEnoughMemory);
        }
        meter.Count(got, *this);
        const bool reports = (flags_ & FlagProgress) != 0 && HasCallbacks() && onProgress;
        if (reports && meter.IsProgressDue()) onProgress(this);
        // Behind a read that brought bytes this never holds: a silent server is bounded by the
        // platform's own time-out.
        if (timeLimit > 0 && meter.elapsed > timeLimit && total > 0 && meter.received == 0) {
            return Fail(StatusNoResponse, Platform::Error::HttpTimeout);
        }
    }
    return Stop();
}

bool Download::Append(std::span<const std::byte> bytes) {
    const std::lock_guard guard(lock);
    return response.Append(bytes);
}

bool Download::Complete() {
    status = StatusComplete;
    active = false;
    request_.reset();
    if (HasCallbacks() && onComplete) onComplete(this);
    return true;
}

bool Download::Stop() {
    active = false;
    request_.reset();
    return false;
}

bool Download::Fail(DownloadStatus failure, Platform::Error error) {
    status = failure;
    lastError = Platform::Code(error);
    active = false;
    request_.reset();
    if (HasCallbacks() && onFailure) onFailure(this);
    return false;
}

}  // namespace tolvanweb
