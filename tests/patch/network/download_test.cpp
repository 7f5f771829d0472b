#include "patch/download.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string_view>
#include <thread>

#include "platform/clock.h"
#include "platform/text.h"
#include "support/test_files.h"
#include "support/test_server.h"

namespace {

using Platform::Utf8FromWide;
using testing::AllOf;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;
using testing::StartsWith;
using TestSupport::WaitUntil;
using namespace TestServer;
using namespace tolvanweb;

constexpr std::uint32_t Background = FlagBackground | FlagCallbacks;

std::string_view TextOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string HeadersOf(const Download& download) {
    return std::string(TextOf(download.response.Bytes().first(download.headerLength)));
}

/// A download that counts its callbacks.
struct Watched : Download {
    Watched() {
        onComplete = [this](Download* download) { Note(completions, download); };
        onFailure = [this](Download* download) { Note(failures, download); };
        onProgress = [this](Download* download) { Note(progresses, download); };
    }
    void Note(std::atomic<int>& count, Download* download) {
        EXPECT_EQ(download, this);
        thread = std::this_thread::get_id();
        ++count;
    }
    bool Run(std::uint32_t flags, const std::wstring& url) {
        EXPECT_EQ(Configure(flags, Utf8FromWide(url)), ConfigureReady);
        return Start();
    }
    bool WaitForEnd() {
        return WaitUntil([this] { return completions + failures > 0; });
    }

    std::atomic<int> completions{0};
    std::atomic<int> failures{0};
    std::atomic<int> progresses{0};
    std::atomic<std::thread::id> thread;
};

TEST(DownloadConfigure, TellsAnOfflineMachineByTheProbeAlone) {
    const Misbehaviour refusing("@http=refuse");
    DropConnections();
    Download download;
    EXPECT_EQ(download.Configure(FlagBlocking, Utf8FromWide(Https(L"x"))), ConfigureOffline);
}

TEST(Download, KeepsHeadersInFrontOfTheBody) {
    Put("page", "the%20body");
    Watched download;
    ASSERT_TRUE(download.Run(FlagBlocking, Https(L"page")));
    EXPECT_EQ(download.status, StatusComplete);
    EXPECT_FALSE(download.active);
    EXPECT_EQ(download.lastError, 0u);
    EXPECT_EQ(download.total, download.response.Size());
    const std::string headers = HeadersOf(download);
    EXPECT_THAT(headers, StartsWith("HTTP/1.1 200 OK\r\n"));
    EXPECT_EQ(headers.substr(headers.size() - 4), "\r\n\r\n");
    EXPECT_EQ(TextOf(download.Body()), "the body");
    EXPECT_EQ(download.completions, 0) << "called without FlagCallbacks";
}

TEST(Download, CompletesWhateverTheServerAnswers) {
    struct Case {
        const char* rule;
        std::string body;
        bool knowsTotal;
    };
    const Case cases[] = {
        {"any=status:500,body:sorry", "sorry", true},
        {"any=status:404,body:nothing", "nothing", true},
        {"any=status:302,body:elsewhere", "elsewhere", true},
        {"any=html", "", true},
        {"any=empty", "", false},
        {"any=big:420000,chunked", BigBody(420'000), false},
        {"any=big:420000,no-length", BigBody(420'000), false},
        {"any=big:420000,cut:300000", BigBody(300'000), true},
        {"any=big:21000000", BigBody(21'000'000), true},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.rule);
        const Misbehaviour misbehaviour(row.rule);
        Watched download;
        EXPECT_TRUE(download.Run(FlagBlocking | FlagCallbacks, Http(L"any")));
        EXPECT_EQ(download.status, StatusComplete);
        EXPECT_EQ(download.completions, 1);
        EXPECT_EQ(download.failures, 0);
        EXPECT_EQ(download.total > 0, row.knowsTotal);
        if (download.total == 0) {
            EXPECT_EQ(download.etaSeconds, 0.0);
        }
        if (std::string_view(row.rule) == "any=html") {
            EXPECT_THAT(std::string(TextOf(download.Body())), HasSubstr("<html"));
        } else {
            EXPECT_TRUE(TextOf(download.Body()) == row.body);
        }
    }
}

TEST(Download, WorksInTheBackgroundAndCallsBackThere) {
    const Misbehaviour misbehaviour("slowly=junk:1M,trickle:2M");
    Watched download;
    ASSERT_TRUE(download.Run(Background | FlagProgress, Http(L"slowly")));
    std::uint32_t seen = 0;
    while (download.status == StatusRunning) {
        const std::lock_guard guard(download.lock);
        EXPECT_GE(download.response.Size(), seen);
        seen = download.response.Size();
    }
    ASSERT_TRUE(download.WaitForEnd());
    EXPECT_EQ(download.status, StatusComplete);
    EXPECT_EQ(download.Body().size(), 1024u * 1024u);
    EXPECT_NE(download.thread.load(), std::this_thread::get_id());
    EXPECT_THAT(download.progresses, AllOf(Ge(1), Le(8)));  // about half a second, 0.1 apart
    EXPECT_THAT(download.bytesPerSecond, AllOf(Ge(100'000), Le(20'000'000)));
    EXPECT_THAT(download.etaSeconds, AllOf(Ge(0.0), Le(1.0)));
}

TEST(Download, StopsWithoutAWordWhenCancelled) {
    const Misbehaviour misbehaviour("endless=endless");
    Watched download;
    ASSERT_TRUE(download.Run(Background, Http(L"endless")));
    ASSERT_TRUE(WaitUntil([&] {
        const std::lock_guard guard(download.lock);
        return download.response.Size() > 1'000'000;
    }));
    EXPECT_TRUE(download.active);
    download.cancelled = true;
    ASSERT_TRUE(WaitUntil([&] { return !download.active; }));
    EXPECT_EQ(download.status, StatusRunning);
    EXPECT_EQ(download.completions + download.failures, 0);
}

TEST(Download, TakesACancelBeforeItsStart) {
    Put("page", "text");
    Watched cleared;
    ASSERT_EQ(cleared.Configure(FlagBlocking, Utf8FromWide(Https(L"page"))), ConfigureReady);
    cleared.cancelled = true;
    EXPECT_TRUE(cleared.Start()) << "Start clears the flag";

    Watched cancelled;
    ASSERT_EQ(cancelled.Configure(FlagBlocking | FlagCallbacks, Utf8FromWide(Https(L"page"))),
              ConfigureReady);
    cancelled.Cancel();
    EXPECT_FALSE(cancelled.Start());
    EXPECT_EQ(cancelled.status, StatusRunning);
    EXPECT_EQ(cancelled.completions + cancelled.failures, 0);
    EXPECT_TRUE(cancelled.Body().empty());
}

TEST(Download, MayBeDroppedWhileItRuns) {
    const Misbehaviour misbehaviour("endless=endless");
    for (int i = 0; i < 20; ++i) {
        auto download = std::make_shared<Watched>();
        ASSERT_TRUE(download->Run(Background, Https(L"endless")));
    }
}

}  // namespace
