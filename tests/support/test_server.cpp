#include "support/test_server.h"

#include <cstdio>
#include <stdexcept>

#include "platform/paths.h"
#include "platform/text.h"
#include "support/http_get.h"
#include "support/test_files.h"

namespace TestServer {

namespace {

std::wstring Address(const std::wstring& variable, const std::wstring& path) {
    const std::wstring base = Platform::GetEnvironmentText(variable);
    if (base.empty()) throw std::runtime_error("run this test through with_server.sh");
    return base + path;
}

std::string Control(const std::string& order) {
    HttpGet get(Address(L"TOLVAN_TEST_CONTROL", Platform::WideFromUtf8(order)));
    if (!Succeeded(get.Run().error) || get.request.StatusCode() != 200u) {
        throw std::runtime_error("the test server does not do " + order);
    }
    return get.body;
}

}  // namespace

std::wstring Http(const std::wstring& path) {
    return Address(L"TOLVAN_TEST_HTTP", path);
}

std::wstring Https(const std::wstring& path) {
    return Address(L"TOLVAN_TEST_HTTPS", path);
}

std::wstring HttpsWith(const std::wstring& certificate, const std::wstring& path) {
    return Address(L"TOLVAN_TEST_HTTPS_" + certificate, path);
}

Misbehaviour::Misbehaviour(const std::string& rule) : id_(Control("set?rule=" + rule)) {
    id_.resize(id_.find_last_not_of("\n") + 1);
}

Misbehaviour::~Misbehaviour() {
    try {
        Control("clear?id=" + id_);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
}

void Put(const std::string& path, const std::string& text) {
    Control("put?path=" + path + "&text=" + text);
}

void DropConnections() {
    Control("drop");
}

LogMark::LogMark() : start_(Control("log").size()) {}

std::string LogMark::Since() const {
    return Control("log?from=" + std::to_string(start_));
}

int LogMark::Count(const std::string& text) const {
    const std::string log = Since();
    int count = 0;
    for (std::size_t at = log.find(text); at != log.npos; at = log.find(text, at + 1)) {
        ++count;
    }
    return count;
}

void LogMark::WaitFor(const std::string& text) const {
    if (!TestSupport::WaitUntil([&] { return Count(text) > 0; })) {
        throw std::runtime_error("never in the log: " + text);
    }
}

std::string BigBody(std::size_t size) {
    std::string body;
    for (unsigned long long number = 0; body.size() < size; ++number) {
        char line[64];
        std::snprintf(line, sizeof line, "made/up/%012llu.dat=1234567890\t65556\n", number);
        body += line;
    }
    body.resize(size);
    return body;
}

}  // namespace TestServer
