#include "platform/http.h"

#include <windows.h>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>
#include <wininet.h>

#include "platform/win32/handles.h"

namespace Platform {

namespace {

struct InternetCloser {
    using pointer = HINTERNET;
    void operator()(HINTERNET handle) const { InternetCloseHandle(handle); }
};
using Internet = std::unique_ptr<void, InternetCloser>;

constexpr DWORD MaximumHost = 511;
constexpr DWORD MaximumPath = 2047;

/// Redirects are followed here: not every WinInet ends a chain of them, or refuses to leave TLS.
constexpr int MaximumRedirects = 10;

DWORD RequestFlags(CertificatePolicy policy, bool secure, bool lenient) {
    const DWORD common = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE |
                         INTERNET_FLAG_NO_AUTO_REDIRECT | (secure ? INTERNET_FLAG_SECURE : 0);
    if (policy == CertificatePolicy::Strict) return common | INTERNET_FLAG_NO_UI;
    return common | INTERNET_FLAG_PRAGMA_NOCACHE |
           (lenient ? INTERNET_FLAG_IGNORE_CERT_CN_INVALID | INTERNET_FLAG_IGNORE_CERT_DATE_INVALID
                    : INTERNET_FLAG_KEEP_CONNECTION);
}

Error SetTimeout(HINTERNET handle, DWORD option, std::chrono::milliseconds timeout) {
    auto milliseconds = static_cast<DWORD>(timeout.count());
    return ErrorUnless(InternetSetOptionW(handle, option, &milliseconds, sizeof milliseconds));
}

Error SetTimeouts(HINTERNET handle, const HttpTimeouts& timeouts) {
    if (const Error error = SetTimeout(handle, INTERNET_OPTION_CONNECT_TIMEOUT, timeouts.connect);
        !Succeeded(error)) {
        return error;
    }
    if (const Error error = SetTimeout(handle, INTERNET_OPTION_SEND_TIMEOUT, timeouts.send);
        !Succeeded(error)) {
        return error;
    }
    return SetTimeout(handle, INTERNET_OPTION_RECEIVE_TIMEOUT, timeouts.receive);
}

/// WinInet does not look at how a kept connection was verified: a strict request would ride on one
/// that was made leniently. So such a connection ends with its request.
Error KeepToItself(HINTERNET request) {
    constexpr std::wstring_view header = L"Connection: close\r\n";
    return ErrorUnless(HttpAddRequestHeadersW(request, header.data(),
                                              static_cast<DWORD>(header.size()),
                                              HTTP_ADDREQ_FLAG_ADD | HTTP_ADDREQ_FLAG_REPLACE));
}

std::optional<std::wstring> QueryText(HINTERNET request, DWORD what) {
    DWORD bytes = 0;
    if (HttpQueryInfoW(request, what, nullptr, &bytes, nullptr)) return std::wstring();
    if (GetLastError() != ERROR_INSUFFICIENT_BUFFER) return std::nullopt;
    std::wstring text(bytes / sizeof(wchar_t) + 1, L'\0');
    bytes = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (!HttpQueryInfoW(request, what, text.data(), &bytes, nullptr)) return std::nullopt;
    text.resize(bytes / sizeof(wchar_t));
    return text;
}

/// The address that a relative or absolute one means in a response to the request.
std::optional<std::wstring> CombineUrl(HINTERNET request, const std::wstring& location) {
    constexpr DWORD capacity = 4096;
    std::wstring base(capacity, L'\0');
    DWORD bytes = capacity * sizeof(wchar_t);
    if (!InternetQueryOptionW(request, INTERNET_OPTION_URL, base.data(), &bytes)) {
        return std::nullopt;
    }
    std::wstring combined(capacity, L'\0');
    DWORD length = capacity;
    if (!InternetCombineUrlW(base.c_str(), location.c_str(), combined.data(), &length, 0)) {
        return std::nullopt;
    }
    combined.resize(length);
    return combined;
}

}  // namespace

Error CrackUrl(const std::wstring& url, CrackedUrl& cracked) {
    // Pointers into the URL instead of buffers: what stands behind the host tells whether the URL
    // names a port itself.
    URL_COMPONENTSW parts{};
    parts.dwStructSize = sizeof parts;
    parts.dwHostNameLength = 1;
    parts.dwUrlPathLength = 1;
    if (!InternetCrackUrlW(url.c_str(), static_cast<DWORD>(url.size()), 0, &parts)) {
        return LastError();
    }
    if (parts.nScheme != INTERNET_SCHEME_HTTP && parts.nScheme != INTERNET_SCHEME_HTTPS) {
        return Error::HttpUnknownScheme;
    }
    if (parts.dwHostNameLength == 0 || parts.dwHostNameLength > MaximumHost ||
        parts.dwUrlPathLength > MaximumPath) {
        return Error::HttpInvalidUrl;
    }
    cracked.secure = parts.nScheme == INTERNET_SCHEME_HTTPS;
    cracked.host.assign(parts.lpszHostName, parts.dwHostNameLength);
    const wchar_t* behindHost = parts.lpszHostName + parts.dwHostNameLength;
    cracked.port = *behindHost == L':' ? parts.nPort : std::uint16_t{0};
    cracked.path.assign(parts.lpszUrlPath, parts.dwUrlPathLength);
    if (!cracked.path.starts_with(L'/')) cracked.path.insert(0, 1, L'/');
    return Error::None;
}

/// The system's own check cannot be woken, so cancelled has no effect.
Error CheckConnection(const std::wstring& url, const std::function<bool()>&) {
    return ErrorUnless(InternetCheckConnectionW(url.c_str(), FLAG_ICC_FORCE_CONNECTION, 0));
}

struct HttpSession::Implementation {
    Internet handle;
    std::optional<HttpTimeouts> timeouts;
};

HttpSession::HttpSession() = default;
HttpSession::~HttpSession() = default;

Error HttpSession::Open(const std::wstring& agent, std::optional<HttpTimeouts> timeouts) {
    Internet handle(
        InternetOpenW(agent.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!handle) return LastError();
    if (timeouts) {
        if (const Error error = SetTimeouts(handle.get(), *timeouts); !Succeeded(error)) {
            return error;
        }
    }
    implementation_ = std::make_unique<Implementation>(Implementation{std::move(handle), timeouts});
    return Error::None;
}

bool HttpSession::IsOpen() const {
    return implementation_ != nullptr;
}

struct HttpRequest::Implementation {
    HINTERNET session = nullptr;  ///< owned by the session, which outlives its requests
    std::optional<HttpTimeouts> timeouts;
    CertificatePolicy policy = CertificatePolicy::Strict;
    bool secure = false;   ///< the hop that comes next, or is under way
    bool lenient = false;  ///< wrong names and dates pass
    Internet connection;
    Internet request;

    Error Connect(const std::wstring& host, std::uint16_t port) {
        request.reset();
        connection.reset(InternetConnectW(session, host.c_str(), port, nullptr, nullptr,
                                          INTERNET_SERVICE_HTTP, 0, 0));
        return connection ? Error::None : LastError();
    }
    Error Prepare(const std::wstring& path);
    Error Redirect(const std::wstring& location);
};

Error HttpRequest::Implementation::Prepare(const std::wstring& path) {
    request.reset(HttpOpenRequestW(connection.get(), L"GET", path.c_str(), nullptr, nullptr,
                                   nullptr, RequestFlags(policy, secure, lenient), 0));
    if (!request) return LastError();
    if (lenient) {
        if (const Error error = KeepToItself(request.get()); !Succeeded(error)) return error;
    }
    // Not every WinInet hands the session's time-outs down to its requests.
    return timeouts ? SetTimeouts(request.get(), *timeouts) : Error::None;
}

/// Prepares the request for the place that a response names.
Error HttpRequest::Implementation::Redirect(const std::wstring& location) {
    const auto url = CombineUrl(request.get(), location);
    CrackedUrl parts;
    if (!url || !Succeeded(CrackUrl(*url, parts))) return Error::HttpRedirectFailed;
    if (secure && !parts.secure) return Error::HttpRedirectFailed;
    secure = parts.secure;
    const std::uint16_t port = parts.port != 0 ? parts.port : DefaultHttpPort(secure);
    if (const Error error = Connect(parts.host, port); !Succeeded(error)) return error;
    return Prepare(parts.path);
}

HttpRequest::HttpRequest() : implementation_(std::make_unique<Implementation>()) {}
HttpRequest::~HttpRequest() = default;

Error HttpRequest::Connect(HttpSession& session, const std::wstring& host, std::uint16_t port) {
    if (!session.IsOpen()) return Error::InvalidHandle;
    implementation_->session = session.implementation_->handle.get();
    implementation_->timeouts = session.implementation_->timeouts;
    return implementation_->Connect(host, port);
}

Error HttpRequest::Prepare(const std::wstring& path, bool secure, CertificatePolicy policy) {
    implementation_->secure = secure;
    implementation_->policy = policy;
    implementation_->lenient = secure && policy == CertificatePolicy::IgnoreNameAndDate;
    return implementation_->Prepare(path);
}

/// WinInet's blocking calls cannot be woken everywhere; the caller looks between reads.
void HttpRequest::CancelWhen(std::function<bool()>) {}

Error HttpRequest::Send() {
    for (int hop = 0; hop <= MaximumRedirects; ++hop) {
        if (!HttpSendRequestW(implementation_->request.get(), nullptr, 0, nullptr, 0)) {
            return LastError();
        }
        const auto location = QueryText(implementation_->request.get(), HTTP_QUERY_LOCATION);
        const std::uint32_t status = StatusCode().value_or(0);
        if (status == 0) return Error::HttpInvalidResponse;  // some take silence for a response
        if (status < 300 || status >= 400 || location.value_or(L"").empty()) return Error::None;
        if (const Error error = implementation_->Redirect(*location); !Succeeded(error)) {
            return error;
        }
    }
    return Error::HttpRedirectFailed;
}

std::wstring HttpRequest::RawHeaders() const {
    return QueryText(implementation_->request.get(), HTTP_QUERY_RAW_HEADERS_CRLF).value_or(L"");
}

std::optional<std::uint32_t> HttpRequest::StatusCode() const {
    DWORD status = 0;
    DWORD bytes = sizeof status;
    if (!HttpQueryInfoW(implementation_->request.get(),
                        HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &bytes,
                        nullptr)) {
        return std::nullopt;
    }
    return status;
}

std::optional<std::wstring> HttpRequest::ContentLength() const {
    return QueryText(implementation_->request.get(), HTTP_QUERY_CONTENT_LENGTH);
}

Error HttpRequest::Read(std::span<std::byte> buffer, std::size_t& got) {
    DWORD read = 0;
    const Error error = ErrorUnless(InternetReadFile(implementation_->request.get(), buffer.data(),
                                                     static_cast<DWORD>(buffer.size()), &read));
    got = Succeeded(error) ? read : 0;
    return error;
}

void HttpRequest::Close() {
    implementation_->request.reset();
    implementation_->connection.reset();
}

}  // namespace Platform
