#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <thread>

#include "patch/response_buffer.h"
#include "platform/http.h"

namespace tolvanweb {

enum DownloadStatus : std::uint32_t {
    StatusReadFailed = 1,
    StatusConnectFailed = 2,  ///< no session, or the server could not be named
    StatusNoResponse = 3,     ///< timeLimit ran out with no byte received
    StatusOutOfMemory = 4,    ///< the response does not fit in 32 bits, or in memory
    StatusRequestFailed = 5,  ///< no connection, or no response
    StatusNoHost = 6,         ///< Start without a configured URL
    StatusComplete = 7,       ///< the body was read to its end, whatever the HTTP status
    StatusRunning = 8,        ///< fresh, under way, or cancelled
};

enum DownloadFlag : std::uint32_t {
    FlagBlocking = 1,    ///< Start returns when the request has ended
    FlagBackground = 2,  ///< Start runs the request on a thread of its own
    FlagProgress = 4,    ///< call onProgress, together with FlagCallbacks
    FlagCallbacks = 8,   ///< call onComplete and onFailure
    FlagForceSecure = 16,
};

enum ConfigureResult : int { ConfigureBadUrl = 0, ConfigureOffline = 1, ConfigureReady = 4 };

/// One GET with the whole response kept in memory, its raw headers first and the body behind them.
/// The HTTP status and the body's completeness are not looked at; a certificate may have the wrong
/// name or date. There is no time-out but the platform's own.
///
/// Used once: fill in the callables and timeLimit, Configure, then Start. Configure and Start
/// belong to one thread; the atomic fields and Cancel to any. The callables run on the request's
/// thread and must do no more than set flags: above all, not destroy the object.
class Download {
public:
    using Callback = std::function<void(Download*)>;

    Download() = default;
    /// Cancels and waits for the request's thread.
    ~Download();
    Download(const Download&) = delete;
    Download& operator=(const Download&) = delete;

    /// Takes a UTF-8 URL apart and makes the connection probe, which blocks.
    [[nodiscard]] ConfigureResult Configure(std::uint32_t flags, const std::string& url);

    /// With FlagBackground true once the thread runs, otherwise whether the body was read to its
    /// end. A cancel leaves status at StatusRunning and calls nothing.
    [[nodiscard]] bool Start();

    /// Sets cancelled for good: a Start that is still to come ends at once, too.
    void Cancel();

    /// The body; empty when there is none. Only after the end.
    std::span<const std::byte> Body() const;

    std::mutex lock;  ///< guards response while the request runs
    ResponseBuffer response;

    Callback onComplete;
    Callback onFailure;
    Callback onProgress;
    double timeLimit = 5.0;  ///< seconds

    std::atomic<bool> cancelled{false};
    std::atomic<bool> active{false};
    std::atomic<DownloadStatus> status{StatusRunning};
    std::atomic<std::uint32_t> lastError{0};     ///< the platform's error behind a failure
    std::atomic<std::uint32_t> headerLength{0};  ///< bytes of headers in front of the body
    std::atomic<std::int64_t> total{0};          ///< expected size of the response; 0: unknown
    std::atomic<std::int64_t> bytesPerSecond{0};
    std::atomic<double> etaSeconds{0.0};

private:
    struct Meter;

    bool Perform();
    Platform::Error SendRequest(DownloadStatus& stage);
    bool CaptureHeaders();
    bool ReadBody();
    bool Append(std::span<const std::byte> bytes);
    bool HasCallbacks() const { return (flags_ & FlagCallbacks) != 0; }
    bool IsCancelled() const { return cancelled || cancelledForGood_; }
    bool Complete();
    bool Stop();
    bool Fail(DownloadStatus failure, Platform::Error error);

    std::uint32_t flags_ = 0;
    std::wstring host_;
    std::wstring path_;
    std::uint16_t port_ = 0;
    bool secure_ = false;
    std::atomic<bool> cancelledForGood_{false};
    std::optional<Platform::HttpRequest> request_;
    std::thread worker_;
};

}  // namespace tolvanweb
