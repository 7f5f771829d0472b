#include <gtest/gtest.h>

#include "support/http_get.h"
#include "support/test_server.h"

namespace {

using Platform::Error;
using namespace TestServer;

TEST(HttpRequest, FollowsRedirectsToTheFinalResponse) {
    Put("moved/final", "here");
    const Misbehaviour second("moved/second=redirect:/moved/final");
    const Misbehaviour first("moved/first=redirect:/moved/second");
    HttpGet get(Https(L"moved/first"));
    ASSERT_EQ(get.Run().error, Error::None);
    EXPECT_EQ(get.request.StatusCode(), 200u);
    EXPECT_EQ(get.request.RawHeaders().find(L"Location"), std::wstring::npos);
    EXPECT_EQ(get.body, "here");
}

TEST(HttpRequest, TellsLengthsBeyondFourGibibytes) {
    const Misbehaviour misbehaviour("huge=empty,length:5G,cut:0");
    HttpGet get(Http(L"huge"));
    ASSERT_EQ(get.Send().error, Error::None);
    EXPECT_EQ(get.request.ContentLength(), L"5368709120");
}

TEST(HttpRequest, RidesOnOneConnectionFromSessionToSession) {
    const Misbehaviour misbehaviour("ride=junk:100K");
    for (const std::wstring& url : {Http(L"ride"), Https(L"ride")}) {
        DropConnections();
        const LogMark log;
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(HttpGet(url).Run().error, Error::None);
        }
        EXPECT_EQ(log.Count("listener=http"), 1) << log.Since();
    }
}

TEST(HttpRequest, DoesWithoutAConnectionThatWasClosedMeanwhile) {
    Put("again", "text");
    for (const std::wstring& url : {Http(L"again"), Https(L"again")}) {
        EXPECT_EQ(HttpGet(url).Run().body, "text");
        DropConnections();
        EXPECT_EQ(HttpGet(url).Run().body, "text");
    }
}

}  // namespace
