#include "platform/host/http_transport.h"

#include <algorithm>
#include <cstddef>
#include <list>
#include <mutex>
#include <utility>

namespace Platform {

namespace {

constexpr std::size_t MaximumIdle = 8;

struct IdleTransport {
    std::string key;
    std::unique_ptr<HttpTransport> transport;
};

struct IdlePool {
    std::mutex lock;
    std::list<IdleTransport> transports;  ///< guarded by lock; the one used last stands in front
};

/// Never destroyed: libcurl and OpenSSL tidy themselves up at exit, before or after.
IdlePool& Pool() {
    static auto* const pool = new IdlePool;
    return *pool;
}

}  // namespace

std::unique_ptr<HttpTransport> HttpTransport::Create() {
    const HttpLibrary& curl = GetHttpLibrary();
    CURL* easy = curl.easyInit();
    CURLM* multi = curl.multiInit();
    std::unique_ptr<HttpTransport> transport(new HttpTransport(easy, multi));
    return easy != nullptr && multi != nullptr ? std::move(transport) : nullptr;
}

HttpTransport::~HttpTransport() {
    const HttpLibrary& curl = GetHttpLibrary();
    if (multi_ != nullptr && easy_ != nullptr) curl.multiRemoveHandle(multi_, easy_);
    if (easy_ != nullptr) curl.easyCleanup(easy_);
    if (multi_ != nullptr) curl.multiCleanup(multi_);
}

std::unique_ptr<HttpTransport> TakeIdleTransport(const std::string& key) {
    IdlePool& pool = Pool();
    const std::lock_guard guard(pool.lock);
    const auto found = std::find_if(pool.transports.begin(), pool.transports.end(),
                                    [&](const IdleTransport& idle) { return idle.key == key; });
    if (found == pool.transports.end()) return nullptr;
    std::unique_ptr<HttpTransport> transport = std::move(found->transport);
    pool.transports.erase(found);
    return transport;
}

void KeepTransport(const std::string& key, std::unique_ptr<HttpTransport> transport) {
    std::list<IdleTransport> surplus;  // closing a connection takes time, so outside the lock
    IdlePool& pool = Pool();
    const std::lock_guard guard(pool.lock);
    pool.transports.push_front({key, std::move(transport)});
    if (pool.transports.size() > MaximumIdle) {
        surplus.splice(surplus.begin(), pool.transports, std::prev(pool.transports.end()));
    }
}

}  // namespace Platform
