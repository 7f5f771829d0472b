#include <gtest/gtest.h>

#include "patch/download.h"
#include "patch/fetch.h"
#include "platform/text.h"
#include "support/test_files.h"
#include "support/test_server.h"

namespace {

using namespace TestServer;

TEST(BrokenConnection, IsTold) {
    const Misbehaviour misbehaviour("reset=junk:1M,cut:300K,reset");
    std::wstring errorText;
    EXPECT_FALSE(Launcher::FetchFile(Http(L"reset"), TestSupport::MakeTestFolder() + L"\\file", {},
                                     {}, &errorText, {}));
    EXPECT_EQ(errorText, L"Read error");
    std::string text;
    EXPECT_FALSE(Launcher::FetchText(Http(L"reset"), text, &errorText, 8'000'000, {}));
    EXPECT_EQ(errorText, L"Read error");
    EXPECT_EQ(text, "");
    tolvanweb::Download download;
    ASSERT_EQ(download.Configure(tolvanweb::FlagBlocking, Platform::Utf8FromWide(Http(L"reset"))),
              tolvanweb::ConfigureReady);
    EXPECT_FALSE(download.Start());
    EXPECT_EQ(download.status, tolvanweb::StatusReadFailed);
    EXPECT_EQ(download.lastError, Platform::Code(Platform::Error::HttpConnectionReset));
}

}  // namespace
