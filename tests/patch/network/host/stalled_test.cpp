#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "patch/download.h"
#include "patch/fetch.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/text.h"
#include "support/test_files.h"
#include "support/test_server.h"

namespace {

using Platform::MonotonicSeconds;
using TestSupport::MakeTestFolder;
using namespace TestServer;

constexpr double CancelLimit = 0.25;  // seconds
constexpr const char* Stalls[] = {"stalled=stall", "stalled=junk:1M,stall:headers",
                                  "stalled=junk:1M,stall:300K"};

TEST(StalledDownload, IsJoinedSoonAfterItsCancel) {
    for (const char* rule : Stalls) {
        SCOPED_TRACE(rule);
        const Misbehaviour misbehaviour(rule);
        const LogMark log;
        auto download = std::make_unique<tolvanweb::Download>();
        bool called = false;
        download->onComplete = download->onFailure = [&](tolvanweb::Download*) { called = true; };
        ASSERT_EQ(download->Configure(tolvanweb::FlagBackground | tolvanweb::FlagCallbacks,
                                      Platform::Utf8FromWide(Https(L"stalled"))),
                  tolvanweb::ConfigureReady);
        ASSERT_TRUE(download->Start());
        log.WaitFor("GET /stalled");
        const double start = MonotonicSeconds();
        download.reset();
        EXPECT_LT(MonotonicSeconds() - start, CancelLimit);
        EXPECT_FALSE(called);
    }
}

TEST(StalledFetch, EndsSoonAfterItsCancel) {
    const std::wstring destination = MakeTestFolder() + L"\\file";
    for (const char* rule : Stalls) {
        SCOPED_TRACE(rule);
        const Misbehaviour misbehaviour(rule);
        const double start = MonotonicSeconds();
        const auto soon = [&] { return MonotonicSeconds() > start + 0.2; };
        std::wstring errorText = L"untouched";
        EXPECT_FALSE(Launcher::FetchFile(Https(L"stalled"), destination, {}, soon, &errorText, {}));
        EXPECT_LT(MonotonicSeconds() - start, 0.2 + CancelLimit);
        EXPECT_EQ(errorText, L"untouched");
        EXPECT_FALSE(Platform::PathExists(destination));
    }
}

TEST(DownloadFailure, TellsAReadThatFailed) {
    const Misbehaviour misbehaviour("reset=junk:1M,cut:300K,reset");
    tolvanweb::Download download;
    ASSERT_EQ(download.Configure(tolvanweb::FlagBlocking, Platform::Utf8FromWide(Http(L"reset"))),
              tolvanweb::ConfigureReady);
    EXPECT_FALSE(download.Start());
    EXPECT_EQ(download.status, tolvanweb::StatusReadFailed);
    EXPECT_EQ(download.lastError, Platform::Code(Platform::Error::HttpConnectionReset));
}

TEST(FetchFailure, TellsAReadThatFailed) {
    const Misbehaviour misbehaviour("reset=junk:1M,cut:300K,reset");
    const std::wstring destination = MakeTestFolder() + L"\\file";
    std::wstring errorText;
    EXPECT_FALSE(Launcher::FetchFile(Http(L"reset"), destination, {}, {}, &errorText, {}));
    EXPECT_EQ(errorText, L"Read error");
    std::string text;
    EXPECT_FALSE(Launcher::FetchText(Http(L"reset"), text, &errorText, 8'000'000, {}));
    EXPECT_EQ(errorText, L"Read error");
    EXPECT_EQ(text, "");
}

/// No file of this process can grow beyond a limit meanwhile, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    void (*handler_)(int);
    rlimit before_{};
};

TEST(FetchFailure, TellsAFullDisk) {
    const Misbehaviour misbehaviour("large=junk:4M");
    const std::wstring destination = MakeTestFolder() + L"\\file";
    std::wstring errorText;
    const FullDisk full(1'000'000);
    EXPECT_FALSE(Launcher::FetchFile(Https(L"large"), destination, {}, {}, &errorText, {}));
    EXPECT_EQ(errorText, L"Write error (is the disk full?)");
    EXPECT_FALSE(Platform::PathExists(destination));
}

}  // namespace
