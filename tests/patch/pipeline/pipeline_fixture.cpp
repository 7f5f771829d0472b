#include "patch/pipeline/pipeline_fixture.h"

#include <sstream>

#include "patch/crc32.h"
#include "platform/clock.h"
#include "platform/text.h"

namespace Launcher {
namespace {

constexpr double Patience = 60.0;  // seconds

std::string Escape(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        text += {'%', digits[byte / 16], digits[byte % 16]};
    }
    return text;
}

std::string PathOf(std::string_view name) {
    return "patcher/get/" + std::string(name);
}

}  // namespace

PipelineTest::PipelineTest() {
    pipeline_.Configure(Platform::Utf8FromWide(TestServer::Http(L"")), folder_.Path());
}

void PipelineTest::Serve(std::string_view path, std::string_view bytes) {
    TestServer::Put(Escape(path), Escape(bytes));
}

void PipelineTest::Publish(std::string_view name, std::string_view payload) {
    Serve(PathOf(name), Wrapped(payload));
    ListFile(name, payload);
}

void PipelineTest::PublishLarge(std::string_view name, const std::string& piece,
                                std::size_t pieces) {
    std::string payload;
    for (std::size_t i = 0; i < pieces; ++i)
        payload += piece;
    const std::string wrapped = Wrapped(payload);
    const std::string path = PathOf(name);
    Serve(path, wrapped.substr(0, WrapperHeaderSize));
    TestServer::Append(Escape(path), Escape(piece), pieces);
    TestServer::Append(Escape(path), Escape(wrapped.substr(wrapped.size() - WrapperTrailerSize)));
    ListFile(name, payload);
}

void PipelineTest::ListFile(std::string_view name, std::string_view payload) {
    const std::uint32_t crc = Crc32Of(std::as_bytes(std::span(payload)));
    List(std::string(name) + "=" + std::to_string(crc) + "\t" +
         std::to_string(payload.size() + WrapperOverhead));
}

void PipelineTest::Begin(bool repair) {
    Serve("scripts/index.txt", list_);
    log_.emplace();
    pipeline_.Begin(repair);
}

void PipelineTest::TickUntil(const std::function<bool()>& condition) {
    const double end = Platform::MonotonicSeconds() + Patience;
    while (!condition()) {
        if (Platform::MonotonicSeconds() > end) throw std::runtime_error("the pass hangs");
        pipeline_.Tick();
        Platform::SleepMilliseconds(1);
    }
}

std::vector<State> PipelineTest::Finish() {
    std::vector<State> states{Progress().state};
    TickUntil([&] {
        if (Progress().state != states.back()) states.push_back(Progress().state);
        return !IsPatching(states.back());
    });
    return states;
}

std::vector<State> PipelineTest::Run(bool repair) {
    Begin(repair);
    return Finish();
}

std::vector<std::string> PipelineTest::Fetched() const {
    constexpr std::string_view folder = "GET /patcher/get/";
    std::vector<std::string> names;
    std::istringstream log(log_->Since());
    for (std::string line; std::getline(log, line);) {
        const std::size_t at = line.find(folder);
        if (at == std::string::npos || line.find(" request ") == std::string::npos) continue;
        names.push_back(line.substr(at + folder.size()));
    }
    return names;
}

}  // namespace Launcher
