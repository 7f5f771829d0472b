#pragma once

#include <filesystem>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "connection.h"
#include "control.h"
#include "listener.h"
#include "tls.h"

namespace Server {

struct ListenerOptions {
    std::string name;         ///< "http", "https" or "https-CERTIFICATE"
    std::uint16_t port = 0;   ///< 0: picked by the system
    std::string certificate;  ///< empty: plain HTTP
};

struct Options {
    std::vector<std::filesystem::path> roots;
    std::filesystem::path certificates;
    std::vector<ListenerOptions> listeners;
    std::uint16_t controlPort = 0;
    std::string log;
    std::vector<FaultRule> faults;
};

/// Serves the roots on every listener, on loopback only, from construction to destruction, with
/// one thread a connection.
class Server final : private Listeners {
public:
    /// Throws std::exception when something cannot be had: a port, a certificate, the log.
    explicit Server(const Options& options);
    ~Server() override;
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// {"pid": N, "control": PORT, "NAME": PORT, ...}
    std::string DescribeAsJson() const;

private:
    struct Served {
        Served(const ListenerOptions& given, const std::filesystem::path& certificates);

        std::string name;
        bool isControl = false;
        TlsContext tls;
        std::unique_ptr<Listener> listener;
    };
    struct Running {
        Running(const Shared& shared, std::uint64_t id, const Served& served, Descriptor socket);

        Connection connection;
        bool ended = false;   ///< guarded by connectionsMutex_
        std::jthread thread;  ///< last, so that it is joined before the rest goes
    };

    void ApplyRefusals() override;
    void DropConnections() override;
    void AddListener(const ListenerOptions& options, bool isControl);
    void Accept(const Served& served, Descriptor socket, const std::string& peer);

    RequestLog log_;
    Tree tree_;
    FaultTable faults_;
    Control control_;
    Event stop_;
    std::filesystem::path certificates_;
    std::mutex refusalMutex_;  ///< held while listeners open and close
    std::vector<std::unique_ptr<Served>> served_;
    std::mutex connectionsMutex_;  ///< also held while a connection's socket is closed
    std::list<std::unique_ptr<Running>> connections_;  ///< guarded by connectionsMutex_
    std::uint64_t lastId_ = 0;                         ///< guarded by connectionsMutex_
};

}  // namespace Server
