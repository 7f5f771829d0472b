#pragma once

#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <cstdint>
#include <optional>
#include <string>

#include "fault_table.h"
#include "request_log.h"
#include "transport.h"
#include "tree.h"

namespace Server {

class Control;

/// What every connection works with; it outlives them.
struct Shared {
    const Tree& tree;
    FaultTable& faults;
    const RequestLog& log;
    Control& control;
    const Event& stop;
};

/// One accepted connection, from its handshake to its end.
class Connection {
public:
    /// isControl: requests go to the control instead of the tree.
    Connection(Shared shared, std::uint64_t id, std::string listener, bool isControl,
               Descriptor socket, SSL_CTX* tls);

    /// Answers requests until the connection ends. On a thread of its own.
    void Run();
    /// Ends Run soon. Any thread, but not while Finish runs.
    void Shutdown() { transport_.Shutdown(); }
    /// Closes the socket; after Run.
    void Finish() { transport_.Finish(); }
    bool IsControl() const { return isControl_; }

private:
    using Request = boost::beast::http::request<boost::beast::http::empty_body>;

    void ServeAll();
    bool MeetsConnectionFault();
    std::optional<Request> ReadRequest();
    bool Serve(const Request& request);
    void Log(std::string_view event, const std::string& text) const;

    Shared shared_;
    std::uint64_t id_;
    std::string listener_;
    bool isControl_;
    Transport transport_;
    std::string received_;  ///< read, but not yet parsed
    std::uint64_t requests_ = 0;
};

}  // namespace Server
