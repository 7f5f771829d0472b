#pragma once

#include <arpa/inet.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>

/// A listening socket of this machine, at a port that the system picks.
class Listener {
public:
    explicit Listener(int backlog) {
        auto* place = reinterpret_cast<sockaddr*>(&address_);
        socklen_t size = sizeof address_;
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (bind(socket_, place, size) != 0 || listen(socket_, backlog) != 0 ||
            getsockname(socket_, place, &size) != 0) {
            throw std::runtime_error("no port to listen at");
        }
    }
    ~Listener() { close(socket_); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    std::wstring Url() const {
        return L"http://127.0.0.1:" + std::to_wstring(ntohs(address_.sin_port)) + L"/";
    }
    int Socket() const { return socket_; }
    const sockaddr* Address() const { return reinterpret_cast<const sockaddr*>(&address_); }

private:
    int socket_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address_{};
};

/// Lets connections wait for ever: the one place in its queue is taken.
class FullListener : public Listener {
public:
    FullListener() : Listener(0) {
        if (connect(filler_, Address(), sizeof(sockaddr_in)) != 0) {
            throw std::runtime_error("the listener cannot be filled");
        }
    }
    ~FullListener() { close(filler_); }

private:
    int filler_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

/// Gives one connection these bytes for an answer, and closes it.
class RawServer : public Listener {
public:
    explicit RawServer(std::string answer)
        : Listener(5), thread_([this, answer = std::move(answer)] {
              const int connection = accept(Socket(), nullptr, nullptr);
              char request[4096];
              if (recv(connection, request, sizeof request, 0) > 0) {
                  send(connection, answer.data(), answer.size(), MSG_NOSIGNAL);
              }
              close(connection);
          }) {}
    ~RawServer() { thread_.join(); }

private:
    std::thread thread_;
};
