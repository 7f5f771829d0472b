#pragma once

#include <string>

/// The tolvan-server that with_server.sh runs beside a test. What goes wrong here throws.
namespace TestServer {

/// Addresses below its listeners. certificate is the end of a variable of with_server.sh:
/// "WRONG_NAME", "EXPIRED", "UNKNOWN_ISSUER", "SELF_SIGNED".
std::wstring Http(const std::wstring& path);
std::wstring Https(const std::wstring& path);
std::wstring HttpsWith(const std::wstring& certificate, const std::wstring& path);

/// The server misbehaves by a rule ("PATTERN=ACTION,...") as long as this lives.
class Misbehaviour {
public:
    explicit Misbehaviour(const std::string& rule);
    ~Misbehaviour();
    Misbehaviour(const Misbehaviour&) = delete;
    Misbehaviour& operator=(const Misbehaviour&) = delete;

private:
    std::string id_;
};

/// Serves a text, as it may stand in a query, at a path.
void Put(const std::string& path, const std::string& text);
/// Ends every open connection.
void DropConnections();

/// A place in the server's log, and what was written behind it.
class LogMark {
public:
    LogMark();
    std::string Since() const;
    /// How often the text stands behind the mark.
    int Count(const std::string& text) const;
    /// Waits until it does.
    void WaitFor(const std::string& text) const;

private:
    std::size_t start_;
};

/// Bytes of the body of a "big" answer: lines of 42 bytes with ascending numbers.
std::string BigBody(std::size_t size);

}  // namespace TestServer
