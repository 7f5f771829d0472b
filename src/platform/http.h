#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "platform/error.h"

/// HTTP GET over HTTP/1.1, plain and TLS: no cache is read or written, redirects are followed,
/// the system's proxy settings hold. Connections to one host are kept and used again underneath,
/// also between sessions. A session and a request belong to one thread at a time.
namespace Platform {

struct CrackedUrl {
    bool secure = false;
    std::wstring host;       ///< an IPv6 address stands in brackets
    std::uint16_t port = 0;  ///< 0 when the URL names none
    std::wstring path;       ///< with the query; "/" when the URL has none
};

constexpr std::uint16_t DefaultHttpPort(bool secure) {
    return secure ? 443 : 80;
}

/// Host at most 511 characters, path with query 2,047. HttpUnknownScheme for a scheme other than
/// http and https, HttpInvalidUrl for what is no URL or too long.
[[nodiscard]] Error CrackUrl(const std::wstring& url, CrackedUrl& cracked);

/// Makes a fresh connection to the URL's host, so that an offline machine can be told from a
/// server that is down. Blocks for as long as a connection attempt takes. cancelled, when given, is
/// polled meanwhile, as in HttpRequest::CancelWhen.
[[nodiscard]] Error CheckConnection(const std::wstring& url,
                                    const std::function<bool()>& cancelled = {});

enum class CertificatePolicy {
    Strict,
    /// A wrong name or date passes, an unknown issuer still fails. Means nothing for a plain
    /// request, also where that is redirected to a secure address.
    IgnoreNameAndDate,
};

struct HttpTimeouts {
    std::chrono::milliseconds connect;
    std::chrono::milliseconds send;
    std::chrono::milliseconds receive;  ///< silence while headers or body are awaited
};

/// What WinInet gives a session that sets nothing, and so what the host adapter gives it:
/// 60 s to connect, 30 s of silence.
inline constexpr HttpTimeouts DefaultHttpTimeouts{
    std::chrono::seconds(60), std::chrono::seconds(30), std::chrono::seconds(30)};

class HttpSession {
public:
    HttpSession();
    ~HttpSession();
    HttpSession(const HttpSession&) = delete;
    HttpSession& operator=(const HttpSession&) = delete;

    /// agent is sent as User-Agent. Without timeouts the platform's defaults hold.
    [[nodiscard]] Error Open(const std::wstring& agent, std::optional<HttpTimeouts> timeouts);
    bool IsOpen() const;

private:
    friend class HttpRequest;

    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

/// One GET: Connect, Prepare, Send, then the headers and reads until the end.
/// A session has to outlive its requests.
class HttpRequest {
public:
    HttpRequest();
    ~HttpRequest();
    HttpRequest(const HttpRequest&) = delete;
    HttpRequest& operator=(const HttpRequest&) = delete;

    /// Names the server. Nothing goes over the network yet.
    [[nodiscard]] Error Connect(HttpSession& session, const std::wstring& host, std::uint16_t port);
    /// Names what to get. Nothing goes over the network yet.
    [[nodiscard]] Error Prepare(const std::wstring& path, bool secure, CertificatePolicy policy);
    /// Polled while this request waits for the network; where the platform can wake a wait, a true
    /// answer ends it within 250 ms with HttpOperationCancelled.
    void CancelWhen(std::function<bool()> cancelled);
    /// Sends the request and waits for the response's headers.
    [[nodiscard]] Error Send();

    /// The final response's header lines, each ended by CR LF, with an empty line at the end.
    std::wstring RawHeaders() const;
    std::optional<std::uint32_t> StatusCode() const;
    /// The text of the Content-Length header; none when it is missing.
    std::optional<std::wstring> ContentLength() const;

    /// Waits for the next bytes of the body. got is 0 only at its end; a body that the server cut
    /// short may end so too, on either platform.
    [[nodiscard]] Error Read(std::span<std::byte> buffer, std::size_t& got);

    /// Ends the request; a connection whose body was read to its end is kept for the next one.
    void Close();

private:
    struct Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace Platform
