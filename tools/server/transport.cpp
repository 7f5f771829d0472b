#include "transport.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/err.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/time.h>

#include "tls.h"

namespace Server {

namespace {

template <typename Value>
void SetOption(int socket, int level, int option, const Value& value) {
    // None of the options set here is needed for what is sent, only for when and how it ends.
    [[maybe_unused]] const int result = ::setsockopt(socket, level, option, &value, sizeof value);
}

}  // namespace

Transport::Transport(Descriptor socket, SSL_CTX* context, const Event& stop)
    : socket_(std::move(socket)), stop_(stop) {
    SetOption(socket_.Get(), IPPROTO_TCP, TCP_NODELAY, 1);
    SetOption(socket_.Get(), SOL_SOCKET, SO_RCVTIMEO, timeval{IdleTime.count(), 0});
    if (context) {
        tls_.reset(::SSL_new(context));
        ::SSL_set_fd(tls_.get(), socket_.Get());
    }
}

Transport::~Transport() = default;

bool Transport::Handshake(std::string& problem) {
    ::ERR_clear_error();
    if (::SSL_accept(tls_.get()) == 1) return true;
    problem = TlsProblem();
    return false;
}

std::size_t Transport::Read(std::span<char> buffer) {
    if (tls_) {
        std::size_t count = 0;
        ::ERR_clear_error();
        return ::SSL_read_ex(tls_.get(), buffer.data(), buffer.size(), &count) == 1 ? count : 0;
    }
    ssize_t count = 0;
    do {
        count = ::recv(socket_.Get(), buffer.data(), buffer.size(), 0);
    } while (count < 0 && errno == EINTR);
    return static_cast<std::size_t>(std::max<ssize_t>(count, 0));
}

bool Transport::Write(std::span<const char> bytes) {
    if (tls_) {
        std::size_t count = 0;
        ::ERR_clear_error();
        return bytes.empty() || ::SSL_write_ex(tls_.get(), bytes.data(), bytes.size(), &count) == 1;
    }
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket_.Get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return true;
}

std::uint64_t Transport::SendFile(int file, std::uint64_t offset, std::uint64_t count) {
    std::uint64_t sent = 0;
    auto position = static_cast<off_t>(offset);
    while (sent < count) {
        const auto block = static_cast<std::size_t>(std::min<std::uint64_t>(count - sent, INT_MAX));
        const ssize_t done = ::sendfile(socket_.Get(), file, &position, block);
        if (done < 0 && errno == EINTR) continue;
        if (done <= 0) break;
        sent += static_cast<std::uint64_t>(done);
    }
    return sent;
}

bool Transport::Pause(std::chrono::milliseconds time) {
    return WaitOnSocket(socket_.Get(), {&stop_}, time) == Woken::TimeOver;
}

bool Transport::PauseUntil(const Event& event) {
    return WaitOnSocket(socket_.Get(), {&stop_, &event}, std::chrono::hours(24)) == Woken::Event;
}

void Transport::Close() {
    ::ERR_clear_error();
    if (tls_) ::SSL_shutdown(tls_.get());
    ::shutdown(socket_.Get(), SHUT_WR);
}

void Transport::Reset() {
    SetOption(socket_.Get(), SOL_SOCKET, SO_LINGER, linger{1, 0});
}

void Transport::Shutdown() {
    ::shutdown(socket_.Get(), SHUT_RDWR);
}

}  // namespace Server
