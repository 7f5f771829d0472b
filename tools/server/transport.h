#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <openssl/ssl.h>
#include <span>
#include <string>

#include "system.h"

namespace Server {

/// One accepted connection, plain or TLS, with blocking calls. It belongs to one thread, except
/// for Shutdown.
class Transport {
public:
    /// Without a context the connection is plain. The event ends every wait.
    Transport(Descriptor socket, SSL_CTX* context, const Event& stop);
    ~Transport();
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    /// TLS only; problem says why it failed.
    [[nodiscard]] bool Handshake(std::string& problem);
    bool IsSecure() const { return tls_ != nullptr; }

    /// 0 at the end, after a failure, and when nothing has come for IdleTime.
    std::size_t Read(std::span<char> buffer);
    [[nodiscard]] bool Write(std::span<const char> bytes);
    /// Plain only: sends a part of a file without copying it. Returns how many bytes went out.
    std::uint64_t SendFile(int file, std::uint64_t offset, std::uint64_t count);

    /// False when the peer left or the server stops before the time is over.
    [[nodiscard]] bool Pause(std::chrono::milliseconds time);
    /// Waits until the peer leaves, the server stops or the event is set; true for the event.
    [[nodiscard]] bool PauseUntil(const Event& event);

    /// Orderly end: what was written arrives. Nothing may be read or written afterwards.
    void Close();
    /// Finish will be seen as a reset.
    void Reset();
    /// Ends all reading, writing and waiting at once. Any thread, but not while Finish runs.
    void Shutdown();
    /// Closes the socket.
    void Finish() { socket_ = Descriptor(); }

    static constexpr std::chrono::seconds IdleTime{75};

private:
    struct TlsDeleter {
        void operator()(SSL* tls) const { SSL_free(tls); }
    };

    Descriptor socket_;
    std::unique_ptr<SSL, TlsDeleter> tls_;
    const Event& stop_;
};

}  // namespace Server
