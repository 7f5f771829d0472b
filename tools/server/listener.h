#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <thread>

#include "system.h"

namespace Server {

/// A port on loopback whose connections go to a handler, on the listener's own thread. The port
/// belongs to this object also while it is closed and connections are refused. Open and Close
/// belong to one thread at a time.
class Listener {
public:
    using Handler = std::function<void(Descriptor socket, const std::string& peer)>;

    /// Port 0 lets the system pick. Throws std::system_error when the port cannot be had.
    Listener(std::uint16_t port, Handler handler);
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    std::uint16_t Port() const { return port_; }
    bool IsOpen() const { return thread_.joinable(); }
    void Open();
    void Close();

private:
    void AcceptAll() const;

    Handler handler_;
    Descriptor reserved_;  ///< bound, never listening: keeps the port ours
    std::uint16_t port_ = 0;
    Descriptor socket_;
    std::thread thread_;
};

}  // namespace Server
