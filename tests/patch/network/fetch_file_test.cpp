#include <future>
#include <gtest/gtest.h>
#include <vector>

#include "patch/fetch.h"
#include "platform/files.h"
#include "support/test_files.h"
#include "support/test_server.h"

namespace {

using Launcher::FetchFile;
using TestSupport::MakeTestFolder;
using TestSupport::ReadText;
using TestSupport::WriteText;
using namespace TestServer;

/// One FetchFile with everything that it tells.
struct Fetched {
    bool Run(const std::wstring& url, const std::wstring& destination) {
        return FetchFile(
            url, destination,
            [this](std::uint64_t done, std::uint64_t total) {
                EXPECT_GT(done, lastDone);
                lastDone = done;
                lastTotal = total;
            },
            {}, &errorText,
            [this](std::span<const std::byte> bytes) {
                sunk.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
            });
    }

    std::wstring errorText = L"untouched";
    std::string sunk;
    std::uint64_t lastDone = 0;
    std::uint64_t lastTotal = 0;
};

TEST(FetchFile, StreamsIntoTheFileTheSinkAndTheProgress) {
    struct Case {
        const char* rule;
        std::size_t size;
    };
    const Case cases[] = {
        {"file=big:4200000", 4'200'000},
        {"file=big:4200000,chunked", 4'200'000},
        {"file=big:4200000,no-length", 4'200'000},
        {"file=big:420000,trickle:20M", 420'000},
        {"file=empty", 0},
    };
    // The first one makes the folders, and each later one replaces the file before it.
    const std::wstring destination = MakeTestFolder() + L"\\new/folders\\file.part";
    for (const Case& row : cases) {
        const std::string body = BigBody(row.size);
        for (const std::wstring& url : {Http(L"file"), Https(L"file")}) {
            SCOPED_TRACE(row.rule);
            const Misbehaviour misbehaviour(row.rule);
            Fetched fetched;
            EXPECT_TRUE(fetched.Run(url, destination));
            EXPECT_EQ(fetched.errorText, L"untouched");
            EXPECT_TRUE(Platform::PathExists(destination));
            EXPECT_TRUE(ReadText(destination) == body);
            EXPECT_TRUE(fetched.sunk == body);
            EXPECT_EQ(fetched.lastDone, body.size());
            EXPECT_EQ(fetched.lastTotal, body.size());
        }
    }
}

TEST(FetchFile, LeavesNothingAndSaysWhyWhenTheServerFails) {
    struct Case {
        const char* rule;
        const wchar_t* text;
    };
    const Case cases[] = {
        {"bad=status:404", L"HTTP 404"},
        {"bad=status:500", L"HTTP 500"},
        {"bad=status:302", L"HTTP 302"},
        {"bad=status:204", L"HTTP 204"},
        {"bad=redirect:self", L"Could not open the download URL"},
        {"bad=junk:10M,cut:3200K", L"Truncated: got 3 MB of 10 MB"},
        {"bad=junk:10M,cut:0", L"Truncated: got 0 MB of 10 MB"},
        {"bad=junk:10M,length:%2B1", L"Truncated: got 10 MB of 10 MB"},
        {"@*=close", L"Could not open the download URL"},
    };
    for (const Case& row : cases) {
        for (const std::wstring& url : {Http(L"bad"), Https(L"bad")}) {
            SCOPED_TRACE(row.rule);
            const std::wstring destination = MakeTestFolder() + L"\\file";
            WriteText(destination, "old");
            Fetched fetched;
            {
                const Misbehaviour misbehaviour(row.rule);
                DropConnections();
                EXPECT_FALSE(fetched.Run(url, destination));
            }
            EXPECT_EQ(fetched.errorText, row.text);
            EXPECT_FALSE(Platform::PathExists(destination));
        }
    }
}

TEST(FetchFile, WorksOnThreadsAtOnce) {
    const Misbehaviour misbehaviour("file=big:4200000");
    const std::string body = BigBody(4'200'000);
    const std::wstring folder = MakeTestFolder();
    std::vector<std::future<bool>> threads;
    for (int i = 0; i < 3; ++i) {
        threads.push_back(std::async(std::launch::async, [&, i] {
            const std::wstring destination = folder + L"\\" + std::to_wstring(i);
            bool good = true;
            for (int turn = 0; turn < 5; ++turn) {
                good = FetchFile(Https(L"file"), destination, {}, {}, nullptr, {}) &&
                       ReadText(destination) == body && good;
            }
            return good;
        }));
    }
    for (std::future<bool>& thread : threads) {
        EXPECT_TRUE(thread.get());
    }
}

}  // namespace
