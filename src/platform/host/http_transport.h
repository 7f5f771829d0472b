#pragma once

#include <memory>
#include <string>

#include "platform/host/http_library.h"

namespace Platform {

/// A libcurl easy handle in a multi handle of its own. The multi keeps the connections that its
/// transfers leave open, so whoever gets a used transport rides on them. One thread at a time.
class HttpTransport {
public:
    /// Null when there is no memory. The library has to be loaded.
    static std::unique_ptr<HttpTransport> Create();
    ~HttpTransport();
    HttpTransport(const HttpTransport&) = delete;
    HttpTransport& operator=(const HttpTransport&) = delete;

    CURL* Easy() const { return easy_; }
    CURLM* Multi() const { return multi_; }

private:
    HttpTransport(CURL* easy, CURLM* multi) : easy_(easy), multi_(multi) {}

    CURL* easy_;
    CURLM* multi_;
};

/// The transports that wait for their next transfer. key names the server and how its certificate
/// was judged: a connection that was made leniently must never serve a request that is strict, and
/// libcurl itself would not look. Both calls from any thread.

/// The transport of that key that was used last; null when there is none.
std::unique_ptr<HttpTransport> TakeIdleTransport(const std::string& key);

/// Hands a transport back whose last transfer ran to its end. Beyond a few the oldest is closed.
void KeepTransport(const std::string& key, std::unique_ptr<HttpTransport> transport);

}  // namespace Platform
