#include "connection.h"

#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/beast/http/verb.hpp>
#include <chrono>
#include <cstdio>

#include "control.h"
#include "sender.h"

namespace http = boost::beast::http;

namespace Server {

namespace {

constexpr std::size_t ReadBlock = 16384;
/// How long a peer may take to notice that the connection was closed.
constexpr std::chrono::seconds CloseTime{5};

std::string ElapsedMs(std::chrono::steady_clock::time_point start) {
    const std::chrono::duration<double, std::milli> elapsed =
        std::chrono::steady_clock::now() - start;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f", elapsed.count());
    return text.data();
}

std::string ToText(boost::beast::string_view view) {
    return {view.data(), view.size()};
}

}  // namespace

Connection::Connection(Shared shared, std::uint64_t id, std::string listener, bool isControl,
                       Descriptor socket, SSL_CTX* tls)
    : shared_(shared),
      id_(id),
      listener_(std::move(listener)),
      isControl_(isControl),
      transport_(std::move(socket), tls, shared.stop) {}

void Connection::Log(std::string_view event, const std::string& text) const {
    // The control is not part of what is watched.
    if (!isControl_) shared_.log.Write(event, "c=" + std::to_string(id_) + " " + text);
}

void Connection::Run() {
    if (!MeetsConnectionFault()) ServeAll();
    Log("close", "requests=" + std::to_string(requests_));
}

bool Connection::MeetsConnectionFault() {
    const auto rule = isControl_ ? nullptr : shared_.faults.ForConnection(listener_);
    if (!rule) return false;
    const Fault& fault = rule->rule.fault;
    if (fault.latency.count() > 0 && !transport_.Pause(fault.latency)) return true;
    switch (fault.connection) {
        case ConnectionFault::Reset:
            transport_.Reset();
            return true;
        case ConnectionFault::Close:
            // Were its request left unread in a closed socket, the peer would see a reset.
            transport_.Close();
            static_cast<void>(transport_.Pause(CloseTime));
            return true;
        case ConnectionFault::Stall:
            return !transport_.PauseUntil(rule->cleared);
        case ConnectionFault::None:
        case ConnectionFault::Refuse:
            break;
    }
    return false;
}

void Connection::ServeAll() {
    std::string problem;
    if (transport_.IsSecure() && !transport_.Handshake(problem)) {
        Log("handshake", "failed: " + problem);
        return;
    }
    while (const auto request = ReadRequest()) {
        if (!Serve(*request)) return;
    }
    transport_.Close();
}

std::optional<Connection::Request> Connection::ReadRequest() {
    http::request_parser<http::empty_body> parser;
    parser.skip(true);
    parser.header_limit(HeaderLimit);
    while (!parser.is_done()) {
        boost::system::error_code error;
        const std::size_t used = parser.put(boost::asio::buffer(received_), error);
        received_.erase(0, used);
        if (!error) continue;
        if (error != http::error::need_more) return std::nullopt;
        std::array<char, ReadBlock> block{};
        const std::size_t count = transport_.Read(block);
        if (count == 0) return std::nullopt;
        received_.append(block.data(), count);
    }
    return parser.release();
}

bool Connection::Serve(const Request& request) {
    const auto start = std::chrono::steady_clock::now();
    const std::string address = ToText(request.target());
    const std::string what = ToText(request.method_string()) + " " + address;
    const std::string number = "r=" + std::to_string(++requests_) + " ";
    Log("request", number + what);

    const bool isGet = request.method() == http::verb::get;
    const auto target = ParseTarget(address);
    Answer answer;
    std::shared_ptr<const ActiveRule> rule;
    if (!isGet && request.method() != http::verb::head) {
        answer = StatusPage(405);
    } else if (!target) {
        answer = StatusPage(400);
    } else if (isControl_) {
        answer = shared_.control.Handle(*target);
    } else {
        rule = shared_.faults.ForRequest(target->path, DecodePercent(target->rawQuery));
        answer = shared_.tree.Find(*target);
        if (rule) {
            answer = ApplyToAnswer(std::move(answer), rule->rule.fault, shared_.tree, address);
        }
    }
    // A body may follow what is no GET, and it is not read.
    const bool keepAlive = isGet && request.keep_alive();
    const Sent sent = Send(transport_, answer, rule.get(), isGet, keepAlive);
    Log("response",
        number + "status=" + std::to_string(answer.status) + " sent=" + std::to_string(sent.bytes) +
            " of=" + (sent.total ? std::to_string(*sent.total) : "-") + " ms=" + ElapsedMs(start) +
            " fault=" + (rule ? std::to_string(rule->id) : "-") + " " + what);
    return sent.keepConnection;
}

}  // namespace Server
