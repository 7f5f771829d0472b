#include "patch/download.h"

#include <gtest/gtest.h>
#include <string_view>

#include "platform/text.h"
#include "support/test_files.h"
#include "support/test_server.h"

namespace {

using Platform::Utf8FromWide;
using TestSupport::WaitUntil;
using namespace TestServer;
using namespace tolvanweb;

constexpr std::uint32_t Background = FlagBackground | FlagCallbacks;

std::string_view TextOf(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A download that counts its callbacks.
struct Watched : Download {
    Watched() {
        onComplete = [this](Download* download) { Note(completions, download); };
        onFailure = [this](Download* download) { Note(failures, download); };
    }
    void Note(std::atomic<int>& count, Download* download) {
        EXPECT_EQ(download, this);
        ++count;
    }
    bool Run(std::uint32_t flags, const std::wstring& url) {
        EXPECT_EQ(Configure(flags, Utf8FromWide(url)), ConfigureReady);
        return Start();
    }

    std::atomic<int> completions{0};
    std::atomic<int> failures{0};
};

TEST(DownloadConfigure, TellsAnOfflineMachineByTheProbeAlone) {
    const Misbehaviour refusing("@http=refuse");
    DropConnections();
    Download download;
    EXPECT_EQ(download.Configure(FlagBlocking, Utf8FromWide(Https(L"x"))), ConfigureOffline);
}

TEST(Download, CompletesWhateverTheServerAnswers) {
    struct Case {
        const char* rule;
        std::string start;
        std::string body;
        std::int64_t length;  ///< that the server tells; 0 when it does not
    };
    const Case cases[] = {
        {"any=body:text", "HTTP/1.1 200 OK\r\n", "text", 4},
        {"any=status:500,body:sorry", "HTTP/1.1 500", "sorry", 5},
        {"any=status:302,body:elsewhere", "HTTP/1.1 302", "elsewhere", 9},
        {"any=empty", "HTTP/1.1 200 OK\r\n", "", 0},
        {"any=big:420000,chunked", "HTTP/1.1 200 OK\r\n", BigBody(420'000), 0},
        {"any=big:420000,no-length", "HTTP/1.1 200 OK\r\n", BigBody(420'000), 0},
        {"any=big:420000,cut:300000", "HTTP/1.1 200 OK\r\n", BigBody(300'000), 420'000},
        {"any=big:21000000", "HTTP/1.1 200 OK\r\n", BigBody(21'000'000), 21'000'000},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.rule);
        const Misbehaviour misbehaviour(row.rule);
        Watched download;
        EXPECT_TRUE(download.Run(FlagBlocking | FlagCallbacks, Http(L"any")));
        EXPECT_EQ(download.status, StatusComplete);
        EXPECT_EQ(download.lastError, 0u);
        EXPECT_FALSE(download.active);
        EXPECT_EQ(download.completions, 1);
        EXPECT_EQ(download.failures, 0);
        EXPECT_EQ(download.total, row.length > 0 ? download.headerLength + row.length : 0);
        const std::string_view headers =
            TextOf(download.response.Bytes().first(download.headerLength));
        EXPECT_TRUE(headers.starts_with(row.start)) << headers;
        EXPECT_TRUE(headers.ends_with("\r\n\r\n")) << headers;
        EXPECT_TRUE(TextOf(download.Body()) == row.body);
    }
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

    Put("page", "text");
    Watched next;
    EXPECT_TRUE(next.Run(FlagBlocking, Http(L"page")));
    EXPECT_EQ(TextOf(next.Body()), "text") << "nothing of the body that was given up";
}

TEST(Download, TakesACancelBeforeItsStart) {
    Put("page", "text");
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
