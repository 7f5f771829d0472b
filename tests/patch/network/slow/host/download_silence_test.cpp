#include <future>
#include <gtest/gtest.h>
#include <vector>

#include "patch/download.h"
#include "platform/clock.h"
#include "platform/text.h"
#include "support/test_server.h"

namespace {

using Platform::MonotonicSeconds;
using namespace TestServer;
using namespace tolvanweb;

// A download sets no time-out, so the platform's own ends it.
TEST(Silence, EndsADownloadAfterThirtySeconds) {
    struct Case {
        const char* rule;
        const wchar_t* path;
        DownloadStatus status;
    };
    const Case cases[] = {
        {"mute/headers=stall", L"mute/headers", StatusRequestFailed},
        {"mute/body=junk:1M,stall:300K", L"mute/body", StatusReadFailed},
    };
    std::vector<std::future<void>> threads;
    for (const Case& row : cases) {
        threads.push_back(std::async(std::launch::async, [row] {
            SCOPED_TRACE(row.rule);
            const Misbehaviour misbehaviour(row.rule);
            Download download;
            EXPECT_EQ(download.Configure(FlagBlocking, Platform::Utf8FromWide(Https(row.path))),
                      ConfigureReady);
            const double start = MonotonicSeconds();
            EXPECT_FALSE(download.Start());
            EXPECT_GT(MonotonicSeconds() - start, 29.0);
            EXPECT_LT(MonotonicSeconds() - start, 45.0);
            EXPECT_EQ(download.status, row.status);
            EXPECT_EQ(download.lastError, Platform::Code(Platform::Error::HttpTimeout));
        }));
    }
    for (std::future<void>& thread : threads) {
        thread.get();
    }
}

}  // namespace
