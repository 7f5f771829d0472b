#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/http_library.h"
#include "platform/host/http_transport.h"
#include "platform/http.h"

namespace Platform {

/// The value of a header among lines that end in CR LF; none when it is missing.
std::optional<std::string_view> FindHeader(std::string_view headers, std::string_view name);

struct HttpOrder {
    std::string url;
    std::string agent;
    CertificatePolicy policy = CertificatePolicy::Strict;
    HttpTimeouts timeouts = DefaultHttpTimeouts;
    bool connectOnly = false;  ///< the transfer ends when the connection stands
    std::function<bool()> cancelled;
};

/// One GET through libcurl, pulled: nothing moves but inside the calls below, so what has arrived
/// and was not read stays within the size of one network read. One thread at a time.
class HttpTransfer {
public:
    /// Nothing goes over the network yet.
    HttpTransfer(HttpOrder order, std::unique_ptr<HttpTransport> transport);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    /// Runs until the final response's headers are there, or a connection where only that is
    /// wanted.
    [[nodiscard]] Error Send();
    /// Fills the buffer as far as bytes come without a pause; got is 0 only at the end.
    [[nodiscard]] Error Read(std::span<std::byte> buffer, std::size_t& got);

    const std::string& Headers() const { return headers_; }
    std::optional<std::uint32_t> StatusCode() const;

    /// The transport, when the transfer came to a good end and others may ride on the connection;
    /// null otherwise, and then it is closed with this object.
    std::unique_ptr<HttpTransport> Release();

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] Error Prepare();
    template <typename Ready>
    [[nodiscard]] Error RunUntil(Ready ready);
    bool Advance();
    [[nodiscard]] Error Wait();
    void NoteSign();
    void TakeHeaderLine(std::string_view line);
    void TakeBody(std::span<const std::byte> bytes);
    bool WillBeFollowed(std::uint32_t status) const;

    static std::size_t OnHeader(char* data, std::size_t size, std::size_t count, void* self);
    static std::size_t OnBody(char* data, std::size_t size, std::size_t count, void* self);
    static int OnConnected(void* self, char*, char*, int, int);

    HttpOrder order_;
    std::unique_ptr<HttpTransport> transport_;
    std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> requestHeaders_;

    std::optional<CURLcode> result_;  ///< set when the transfer has ended
    bool connected_ = false;
    bool moved_ = false;          ///< something came since the last look
    Clock::time_point lastSign_;  ///< when something came, or the wait for it began

    std::string headers_;
    bool headersComplete_ = false;  ///< those of the final response

    std::span<std::byte> target_;   ///< what is left of the reader's buffer
    std::vector<std::byte> spill_;  ///< what came beyond it
    std::size_t spillTaken_ = 0;
};

}  // namespace Platform
