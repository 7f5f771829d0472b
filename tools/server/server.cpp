#include "server.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <unistd.h>

namespace Server {

Server::Served::Served(const ListenerOptions& given, const std::filesystem::path& certificates)
    : name(given.name) {
    if (!given.certificate.empty()) tls = LoadCertificate(certificates, given.certificate);
}

Server::Running::Running(const Shared& shared, std::uint64_t id, const Served& served,
                         Descriptor socket)
    : connection(shared, id, served.name, served.isControl, std::move(socket), served.tls.get()) {}

Server::Server(const Options& options)
    : log_(options.log),
      tree_(options.roots),
      control_(tree_, faults_, log_, *this),
      certificates_(options.certificates) {
    for (const FaultRule& rule : options.faults)
        faults_.Add(rule);
    AddListener({"control", options.controlPort, {}}, true);
    for (const ListenerOptions& listener : options.listeners)
        AddListener(listener, false);
    ApplyRefusals();
}

Server::~Server() {
    stop_.Set();
    for (const auto& served : served_)
        served->listener->Close();
    std::list<std::unique_ptr<Running>> left;
    {
        const std::lock_guard guard(connectionsMutex_);
        for (const auto& running : connections_)
            running->connection.Shutdown();
        left.swap(connections_);
    }
}

void Server::AddListener(const ListenerOptions& options, bool isControl) {
    auto served = std::make_unique<Served>(options, certificates_);
    served->isControl = isControl;
    served->listener = std::make_unique<Listener>(
        options.port, [this, owner = served.get()](Descriptor socket, const std::string& peer) {
            Accept(*owner, std::move(socket), peer);
        });
    served_.push_back(std::move(served));
}

void Server::Accept(const Served& served, Descriptor socket, const std::string& peer) {
    const std::lock_guard guard(connectionsMutex_);
    std::erase_if(connections_, [](const auto& running) { return running->ended; });
    const std::uint64_t id = ++lastId_;
    if (!served.isControl) {
        log_.Write("connect",
                   "c=" + std::to_string(id) + " listener=" + served.name + " peer=" + peer);
    }
    const Shared shared{tree_, faults_, log_, control_, stop_};
    connections_.push_back(std::make_unique<Running>(shared, id, served, std::move(socket)));
    Running& running = *connections_.back();
    running.thread = std::jthread([this, &running] {
        running.connection.Run();
        const std::lock_guard ending(connectionsMutex_);
        running.connection.Finish();
        running.ended = true;
    });
}

void Server::ApplyRefusals() {
    const std::lock_guard guard(refusalMutex_);
    for (const auto& served : served_) {
        if (!served->isControl && faults_.Refuses(served->name)) {
            served->listener->Close();
        } else {
            served->listener->Open();
        }
    }
}

void Server::DropConnections() {
    const std::lock_guard guard(connectionsMutex_);
    for (const auto& running : connections_) {
        if (!running->connection.IsControl()) running->connection.Shutdown();
    }
}

std::string Server::DescribeAsJson() const {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    writer.StartObject();
    writer.Key("pid");
    writer.Int(::getpid());
    for (const auto& served : served_) {
        writer.Key(served->name.c_str());
        writer.Uint(served->listener->Port());
    }
    writer.EndObject();
    return buffer.GetString();
}

}  // namespace Server
