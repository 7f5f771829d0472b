#include <future>
#include <gtest/gtest.h>

#include "patch/fetch.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "support/test_files.h"
#include "support/test_server.h"

namespace {

using Platform::MonotonicSeconds;
using namespace TestServer;

struct Ended {
    bool succeeded;
    std::wstring errorText;
    double seconds;
};

template <typename Fetch>
std::future<Ended> Begin(Fetch fetch) {
    return std::async(std::launch::async, [fetch] {
        Ended ended{};
        const double start = MonotonicSeconds();
        ended.succeeded = fetch(&ended.errorText);
        ended.seconds = MonotonicSeconds() - start;
        return ended;
    });
}

TEST(Silence, EndsAFetchAfterTwentySeconds) {
    struct Case {
        const char* rule;
        const wchar_t* path;
        const wchar_t* fileText;
        const wchar_t* textText;
    };
    const Case cases[] = {
        {"silent/headers=stall", L"silent/headers", L"Could not open the download URL",
         L"Could not open the manifest URL"},
        {"silent/start=junk:1M,stall:headers", L"silent/start", L"Read error", L"Read error"},
        {"silent/body=junk:1M,stall:300K", L"silent/body", L"Read error", L"Read error"},
    };
    const std::wstring folder = TestSupport::MakeTestFolder();
    std::vector<std::unique_ptr<Misbehaviour>> rules;
    std::vector<std::future<Ended>> files;
    std::vector<std::future<Ended>> texts;
    for (const Case& row : cases) {
        rules.push_back(std::make_unique<Misbehaviour>(row.rule));
        const std::wstring destination = folder + L"\\" + std::to_wstring(files.size());
        files.push_back(Begin([=](std::wstring* errorText) {
            return Launcher::FetchFile(Https(row.path), destination, {}, {}, errorText, {});
        }));
        texts.push_back(Begin([=](std::wstring* errorText) {
            std::string text;
            return Launcher::FetchText(Http(row.path), text, errorText, 8'000'000, {});
        }));
    }
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(cases[i].rule);
        for (const Ended& ended : {files[i].get(), texts[i].get()}) {
            EXPECT_FALSE(ended.succeeded);
            EXPECT_GT(ended.seconds, 19.0);
            EXPECT_LT(ended.seconds, 30.0);
            EXPECT_TRUE(ended.errorText == cases[i].fileText ||
                        ended.errorText == cases[i].textText);
        }
        EXPECT_FALSE(Platform::PathExists(folder + L"\\" + std::to_wstring(i)));
    }
}

}  // namespace
