#include "platform/host/http_transfer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <sys/socket.h>
#include <utility>

#include "deployment_values.h"
#include "platform/host/http_errors.h"

namespace Platform {

namespace {

/// How long a cancel may go unseen.
constexpr std::chrono::milliseconds PollInterval(50);
/// One network read of a plain connection; a TLS record is smaller.
constexpr long NetworkReadSize = 65'536;
constexpr long MaximumRedirects = 10;

/// Sets a transfer's options and remembers whether each one was taken.
class OptionSetter {
public:
    explicit OptionSetter(CURL* easy) : easy_(easy) {}

    template <typename Value>
    void operator()(CURLoption option, Value value) {
        if (GetHttpLibrary().easySetopt(easy_, option, value) != CURLE_OK) taken_ = false;
    }
    bool AllTaken() const { return taken_; }

private:
    CURL* easy_;
    bool taken_ = true;
};

/// A cut body ends alike with and without TLS: whoever needs all of it looks at its length.
CURLcode PrepareStrict(CURL*, void* context, void*) {
    GetHttpLibrary().contextSetOptions(static_cast<SSL_CTX*>(context),
                                       SSL_OP_IGNORE_UNEXPECTED_EOF);
    return CURLE_OK;
}

CURLcode PrepareLenient(CURL* easy, void* context, void* data) {
    const HttpLibrary& library = GetHttpLibrary();
    X509_VERIFY_PARAM* parameters = library.contextParameters(static_cast<SSL_CTX*>(context));
    if (library.verifySetFlags(parameters, X509_V_FLAG_NO_CHECK_TIME) != 1) {
        return CURLE_SSL_CONNECT_ERROR;
    }
    return PrepareStrict(easy, context, data);
}

/// No program that is started meanwhile inherits the connection.
curl_socket_t OpenSocket(void*, curlsocktype, curl_sockaddr* address) {
    return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

void SetTrust(OptionSetter& set, CertificatePolicy policy) {
    const bool strict = policy == CertificatePolicy::Strict;
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, strict ? 2L : 0L);
    const curl_ssl_ctx_callback prepare = strict ? &PrepareStrict : &PrepareLenient;
    set(CURLOPT_SSL_CTX_FUNCTION, prepare);
#if TOLVAN_DEVELOPER_BUILD
    // In place of the system's bundle; the system's folder of certificates stays in force.
    const char* authority = std::getenv("TOLVAN_CA_FILE");
    if (authority != nullptr && *authority != '\0') set(CURLOPT_CAINFO, authority);
#endif
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
    return left.size() == right.size() && strncasecmp(left.data(), right.data(), left.size()) == 0;
}

}  // namespace

std::optional<std::string_view> FindHeader(std::string_view headers, std::string_view name) {
    constexpr std::string_view blanks = " \t";
    while (!headers.empty()) {
        std::string_view line = headers.substr(0, headers.find("\r\n"));
        headers.remove_prefix(std::min(headers.size(), line.size() + 2));
        if (line.size() <= name.size() || line[name.size()] != ':' ||
            !EqualIgnoringCase(line.substr(0, name.size()), name)) {
            continue;
        }
        line.remove_prefix(name.size() + 1);
        line.remove_prefix(std::min(line.size(), line.find_first_not_of(blanks)));
        return line.substr(0, line.find_last_not_of(blanks) + 1);
    }
    return std::nullopt;
}

HttpTransfer::HttpTransfer(HttpOrder order, std::unique_ptr<HttpTransport> transport)
    : order_(std::move(order)),
      transport_(std::move(transport)),
      requestHeaders_(nullptr, GetHttpLibrary().slistFreeAll) {}

HttpTransfer::~HttpTransfer() = default;

Error HttpTransfer::Prepare() {
    const HttpLibrary& curl = GetHttpLibrary();
    for (const char* line : {"Cache-Control: no-cache", "Pragma: no-cache"}) {
        curl_slist* longer = curl.slistAppend(requestHeaders_.get(), line);
        if (longer == nullptr) return Error::NotEnoughMemory;
        if (!requestHeaders_) requestHeaders_.reset(longer);
    }

    CURL* easy = transport_->Easy();
    curl.easyReset(easy);
    OptionSetter set(easy);
    set(CURLOPT_URL, order_.url.c_str());
    set(CURLOPT_USERAGENT, order_.agent.c_str());
    set(CURLOPT_HTTPHEADER, requestHeaders_.get());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, MaximumRedirects);
    set(CURLOPT_REDIR_PROTOCOLS_STR, order_.url.starts_with("https:") ? "https" : "http,https");
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(order_.timeouts.connect.count()));
    set(CURLOPT_BUFFERSIZE, NetworkReadSize);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L);  // a cancel does not wait for the name server
    set(CURLOPT_OPENSOCKETFUNCTION, &OpenSocket);
    set(CURLOPT_HEADERFUNCTION, &OnHeader);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &OnBody);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_PREREQFUNCTION, &OnConnected);
    set(CURLOPT_PREREQDATA, this);
    SetTrust(set, order_.policy);
    if (order_.connectOnly) {
        set(CURLOPT_CONNECT_ONLY, 1L);
        set(CURLOPT_FRESH_CONNECT, 1L);
    }
    if (!set.AllTaken()) return Error::NotEnoughMemory;
    return curl.multiAddHandle(transport_->Multi(), easy) == CURLM_OK ? Error::None
                                                                      : Error::NotEnoughMemory;
}

Error HttpTransfer::Send() {
    if (const Error error = Prepare(); !Succeeded(error)) return error;
    if (const Error error = RunUntil([&](bool) { return headersComplete_; }); !Succeeded(error)) {
        return error;
    }
    // Whatever went wrong behind the headers is for the reader to meet.
    if (headersComplete_) return Error::None;
    const Error error = ErrorFromTransfer(transport_->Easy(), *result_);
    const bool headersCut = Succeeded(error) && !order_.connectOnly;
    return headersCut ? Error::HttpConnectionAborted : error;
}

Error HttpTransfer::Read(std::span<std::byte> buffer, std::size_t& got) {
    got = std::min(buffer.size(), spill_.size() - spillTaken_);
    std::copy_n(spill_.begin() + static_cast<std::ptrdiff_t>(spillTaken_), got, buffer.begin());
    spillTaken_ += got;

    target_ = buffer.subspan(got);
    const Error error = RunUntil(
        [&](bool idle) { return target_.empty() || (idle && target_.size() < buffer.size()); });
    got = buffer.size() - target_.size();
    target_ = {};
    if (!Succeeded(error) || got > 0 || buffer.empty()) return error;
    if (*result_ == CURLE_OK || *result_ == CURLE_PARTIAL_FILE) return Error::None;
    return ErrorFromTransfer(transport_->Easy(), *result_);
}

std::optional<std::uint32_t> HttpTransfer::StatusCode() const {
    long code = 0;
    const CURLcode known =
        GetHttpLibrary().easyGetinfo(transport_->Easy(), CURLINFO_RESPONSE_CODE, &code);
    if (known != CURLE_OK || code <= 0) return std::nullopt;
    return static_cast<std::uint32_t>(code);
}

std::unique_ptr<HttpTransport> HttpTransfer::Release() {
    if (result_ != CURLE_OK || !headersComplete_) return nullptr;
    const CURLMcode removed =
        GetHttpLibrary().multiRemoveHandle(transport_->Multi(), transport_->Easy());
    return removed == CURLM_OK ? std::move(transport_) : nullptr;
}

/// Drives the transfer until ready(idle) or its end; idle tells that nothing more has come for now.
template <typename Ready>
Error HttpTransfer::RunUntil(Ready ready) {
    lastSign_ = Clock::now();
    bool idle = false;
    while (!result_ && !ready(idle)) {
        if (order_.cancelled && order_.cancelled()) return Error::HttpOperationCancelled;
        if (idle) {
            if (const Error error = Wait(); !Succeeded(error)) return error;
        }
        idle = !Advance();
    }
    return Error::None;
}

/// Takes what has come, without waiting. False when that was nothing.
bool HttpTransfer::Advance() {
    const HttpLibrary& curl = GetHttpLibrary();
    moved_ = false;
    int running = 0;
    if (curl.multiPerform(transport_->Multi(), &running) != CURLM_OK) {
        result_ = CURLE_OUT_OF_MEMORY;
    } else if (running == 0) {
        int left = 0;
        const CURLMsg* message = curl.multiInfoRead(transport_->Multi(), &left);
        result_ = message != nullptr ? message->data.result : CURLE_OUT_OF_MEMORY;
    }
    return moved_;
}

/// Sleeps until the network stirs, for a poll interval at most.
Error HttpTransfer::Wait() {
    auto patience = PollInterval;
    if (connected_) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            lastSign_ + order_.timeouts.receive - Clock::now());
        if (left.count() <= 0) return Error::HttpTimeout;
        patience = std::min(patience, left);
    }
    const CURLMcode polled = GetHttpLibrary().multiPoll(
        transport_->Multi(), nullptr, 0, static_cast<int>(patience.count()), nullptr);
    return polled == CURLM_OK ? Error::None : Error::NotEnoughMemory;
}

void HttpTransfer::NoteSign() {
    moved_ = true;
    lastSign_ = Clock::now();
}

bool HttpTransfer::WillBeFollowed(std::uint32_t status) const {
    return status >= 300 && status < 400 && !FindHeader(headers_, "Location").value_or("").empty();
}

/// Every hop of a redirected request shows its headers here, and a chunked body its trailer.
void HttpTransfer::TakeHeaderLine(std::string_view line) {
    NoteSign();
    if (line.starts_with("HTTP/")) {
        headers_.clear();
        headersComplete_ = false;
    }
    if (headersComplete_) return;

    line = line.substr(0, line.find_last_not_of("\r\n") + 1);
    headers_.append(line).append("\r\n");
    if (line.empty()) {
        const std::uint32_t status = StatusCode().value_or(0);
        headersComplete_ = status >= 200 && !WillBeFollowed(status);
    }
}

/// Straight into the reader's buffer as far as that goes.
void HttpTransfer::TakeBody(std::span<const std::byte> bytes) {
    NoteSign();
    const std::size_t direct = std::min(bytes.size(), target_.size());
    std::copy_n(bytes.begin(), direct, target_.begin());
    target_ = target_.subspan(direct);
    if (direct == bytes.size()) return;

    if (spillTaken_ == spill_.size()) {
        spill_.clear();
        spillTaken_ = 0;
    }
    const auto rest = bytes.subspan(direct);
    spill_.insert(spill_.end(), rest.begin(), rest.end());
}

std::size_t HttpTransfer::OnHeader(char* data, std::size_t size, std::size_t count, void* self) {
    const std::string_view line(data, size * count);
    static_cast<HttpTransfer*>(self)->TakeHeaderLine(line);
    return line.size();
}

std::size_t HttpTransfer::OnBody(char* data, std::size_t size, std::size_t count, void* self) {
    const std::span<const char> bytes(data, size * count);
    static_cast<HttpTransfer*>(self)->TakeBody(std::as_bytes(bytes));
    return bytes.size();
}

int HttpTransfer::OnConnected(void* self, char*, char*, int, int) {
    auto* transfer = static_cast<HttpTransfer*>(self);
    transfer->connected_ = true;
    transfer->NoteSign();
    return CURL_PREREQFUNC_OK;
}

}  // namespace Platform
