#include "listener.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <chrono>
#include <netinet/in.h>
#include <sys/socket.h>
#include <system_error>

namespace Server {

namespace {

[[noreturn]] void Throw(std::uint16_t port, const char* what) {
    throw std::system_error(errno, std::generic_category(),
                            "port " + std::to_string(port) + ": " + what);
}

template <typename Address>
sockaddr* AsAny(Address& address) {
    return reinterpret_cast<sockaddr*>(&address);
}

/// A stream socket bound to a loopback port.
Descriptor Bind(std::uint16_t port) {
    Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket) Throw(port, "socket");
    const int on = 1;
    if (::setsockopt(socket.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0) {
        Throw(port, "setsockopt");
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(socket.Get(), AsAny(address), sizeof address) != 0) Throw(port, "bind");
    return socket;
}

std::uint16_t BoundPort(const Descriptor& socket) {
    sockaddr_in address{};
    socklen_t size = sizeof address;
    if (::getsockname(socket.Get(), AsAny(address), &size) != 0) Throw(0, "getsockname");
    return ntohs(address.sin_port);
}

std::string Describe(const sockaddr_in& address) {
    std::array<char, INET_ADDRSTRLEN> text{};
    ::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
    return std::string(text.data()) + ":" + std::to_string(ntohs(address.sin_port));
}

}  // namespace

Listener::Listener(std::uint16_t port, Handler handler)
    : handler_(std::move(handler)), reserved_(Bind(port)), port_(BoundPort(reserved_)) {
    Open();
}

Listener::~Listener() {
    Close();
}

void Listener::Open() {
    if (IsOpen()) return;
    socket_ = Bind(port_);
    if (::listen(socket_.Get(), SOMAXCONN) != 0) Throw(port_, "listen");
    thread_ = std::thread([this] { AcceptAll(); });
}

void Listener::Close() {
    if (!IsOpen()) return;
    // This wakes the accept; connections that were not yet accepted are reset.
    ::shutdown(socket_.Get(), SHUT_RDWR);
    thread_.join();
    socket_ = Descriptor();
}

void Listener::AcceptAll() const {
    for (;;) {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        Descriptor socket(::accept4(socket_.Get(), AsAny(address), &size, SOCK_CLOEXEC));
        if (socket) {
            handler_(std::move(socket), Describe(address));
        } else if (errno == EINVAL) {
            return;
        } else if (errno == EMFILE || errno == ENFILE) {
            // No descriptor is free: the waiting connections keep until one is.
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
}

}  // namespace Server
