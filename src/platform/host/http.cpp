#include "platform/http.h"

#include <utility>

#include "platform/host/http_transfer.h"
#include "platform/text.h"

namespace Platform {

namespace {

std::string Authority(const std::wstring& host, std::uint16_t port) {
    return Utf8FromWide(host) + ":" + std::to_string(port);
}

/// What may not stand in a request line goes as "%" and two digits.
std::string RequestTarget(const std::wstring& path) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string target;
    for (const char character : Utf8FromWide(path)) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte > 0x20 && byte < 0x7F) {
            target += character;
        } else {
            target += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return target;
}

/// Whose connections a request may use.
std::string PoolKey(CertificatePolicy policy, const std::string& origin) {
    return (policy == CertificatePolicy::Strict ? "strict " : "lenient ") + origin;
}

}  // namespace

struct HttpSession::Implementation {
    std::string agent;
    HttpTimeouts timeouts;
};

HttpSession::HttpSession() = default;
HttpSession::~HttpSession() = default;

Error HttpSession::Open(const std::wstring& agent, std::optional<HttpTimeouts> timeouts) {
    if (LoadHttpLibrary() == nullptr) return Error::ModuleNotFound;
    implementation_ = std::make_unique<Implementation>(
        Implementation{Utf8FromWide(agent), timeouts.value_or(DefaultHttpTimeouts)});
    return Error::None;
}

bool HttpSession::IsOpen() const {
    return implementation_ != nullptr;
}

struct HttpRequest::Implementation {
    std::string authority;
    std::string poolKey;
    HttpOrder order;
    std::unique_ptr<HttpTransfer> transfer;

    Error SendOver(std::unique_ptr<HttpTransport> transport) {
        if (!transport) return Error::NotEnoughMemory;
        transfer = std::make_unique<HttpTransfer>(order, std::move(transport));
        return transfer->Send();
    }
};

HttpRequest::HttpRequest() : implementation_(std::make_unique<Implementation>()) {}

HttpRequest::~HttpRequest() {
    Close();
}

Error HttpRequest::Connect(HttpSession& session, const std::wstring& host, std::uint16_t port) {
    if (!session.IsOpen()) return Error::InvalidHandle;
    implementation_->authority = Authority(host, port);
    implementation_->order.agent = session.implementation_->agent;
    implementation_->order.timeouts = session.implementation_->timeouts;
    return Error::None;
}

Error HttpRequest::Prepare(const std::wstring& path, bool secure, CertificatePolicy policy) {
    if (!secure) policy = CertificatePolicy::Strict;
    const std::string origin = (secure ? "https://" : "http://") + implementation_->authority;
    implementation_->poolKey = PoolKey(policy, origin);
    implementation_->order.url = origin + RequestTarget(path);
    implementation_->order.policy = policy;
    return Error::None;
}

void HttpRequest::CancelWhen(std::function<bool()> cancelled) {
    implementation_->order.cancelled = std::move(cancelled);
}

Error HttpRequest::Send() {
    if (auto idle = TakeIdleTransport(implementation_->poolKey)) {
        const Error error = implementation_->SendOver(std::move(idle));
        // A server that sent more than it had told leaves the surplus on the connection, where the
        // next response should begin.
        if (error != Error::HttpInvalidResponse) return error;
    }
    return implementation_->SendOver(HttpTransport::Create());
}

std::wstring HttpRequest::RawHeaders() const {
    if (!implementation_->transfer) return {};
    const std::string& headers = implementation_->transfer->Headers();
    std::wstring wide;
    wide.reserve(headers.size());
    for (const char character : headers) {
        wide += static_cast<wchar_t>(static_cast<unsigned char>(character));
    }
    return wide;
}

std::optional<std::uint32_t> HttpRequest::StatusCode() const {
    if (!implementation_->transfer) return std::nullopt;
    return implementation_->transfer->StatusCode();
}

std::optional<std::wstring> HttpRequest::ContentLength() const {
    if (!implementation_->transfer) return std::nullopt;
    const auto value = FindHeader(implementation_->transfer->Headers(), "Content-Length");
    if (!value) return std::nullopt;
    return WideFromUtf8(*value);
}

Error HttpRequest::Read(std::span<std::byte> buffer, std::size_t& got) {
    got = 0;
    if (!implementation_->transfer) return Error::InvalidHandle;
    return implementation_->transfer->Read(buffer, got);
}

void HttpRequest::Close() {
    if (!implementation_->transfer) return;
    if (auto transport = implementation_->transfer->Release()) {
        KeepTransport(implementation_->poolKey, std::move(transport));
    }
    implementation_->transfer.reset();
}

Error CheckConnection(const std::wstring& url, const std::function<bool()>& cancelled) {
    CrackedUrl cracked;
    if (const Error error = CrackUrl(url, cracked); !Succeeded(error)) return error;
    if (LoadHttpLibrary() == nullptr) return Error::ModuleNotFound;
    std::unique_ptr<HttpTransport> transport = HttpTransport::Create();
    if (!transport) return Error::NotEnoughMemory;

    const std::uint16_t port = cracked.port != 0 ? cracked.port : DefaultHttpPort(cracked.secure);
    HttpOrder order;
    order.url = "http://" + Authority(cracked.host, port);
    order.connectOnly = true;
    order.cancelled = cancelled;
    HttpTransfer transfer(std::move(order), std::move(transport));
    return transfer.Send();
}

}  // namespace Platform
