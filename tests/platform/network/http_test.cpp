#include <gtest/gtest.h>

#include "support/http_get.h"
#include "support/test_server.h"

namespace {

using Platform::Error;
using namespace TestServer;

TEST(HttpRequest, TellsHeadersStatusAndBody) {
    Put("plain", "some%20text");
    HttpGet get(Http(L"plain"));
    ASSERT_EQ(get.Send().error, Error::None);
    EXPECT_EQ(get.request.StatusCode(), 200u);
    EXPECT_EQ(get.request.ContentLength(), L"9");
    const std::wstring headers = get.request.RawHeaders();
    EXPECT_EQ(headers.find(L"HTTP/1.1 200 OK\r\n"), 0u);
    EXPECT_NE(headers.find(L"\r\nContent-Length: 9\r\n"), headers.npos);
    EXPECT_EQ(headers.rfind(L"\r\n\r\n"), headers.size() - 4);
    EXPECT_EQ(get.ReadAll().body, "some text");
    EXPECT_EQ(get.error, Error::None);
}

TEST(HttpRequest, ReadsEveryKindOfBodyToItsEnd) {
    struct Case {
        const char* rule;
        const wchar_t* path;
        std::optional<std::wstring> length;
        std::size_t size;
    };
    const Case cases[] = {
        {"kind/plain=big:420000", L"kind/plain", L"420000", 420'000},
        {"kind/chunked=big:420000,chunked", L"kind/chunked", std::nullopt, 420'000},
        {"kind/no_length=big:420000,no-length", L"kind/no_length", std::nullopt, 420'000},
        {"kind/trickle=big:420000,trickle:2M", L"kind/trickle", L"420000", 420'000},
        {"kind/cut=big:420000,cut:300000", L"kind/cut", L"420000", 300'000},
    };
    for (const Case& row : cases) {
        const Misbehaviour misbehaviour(row.rule);
        for (const std::wstring& url : {Http(row.path), Https(row.path)}) {
            for (const std::size_t pieceSize : {65'536u, 1'000'000u, 777u}) {
                SCOPED_TRACE(row.rule);
                HttpGet get(url);
                ASSERT_EQ(get.Send().error, Error::None);
                EXPECT_EQ(get.request.ContentLength(), row.length);
                EXPECT_EQ(get.ReadAll(pieceSize).error, Error::None);
                EXPECT_TRUE(get.body == BigBody(row.size));
            }
        }
    }
}

TEST(HttpRequest, KeepsAnErrorsPageAsItsBody) {
    for (const unsigned status : {404u, 500u, 302u}) {
        const std::string code = std::to_string(status);
        const Misbehaviour misbehaviour("status=status:" + code + ",body:sorry");
        HttpGet get(Http(L"status"));
        ASSERT_EQ(get.Run().error, Error::None);
        EXPECT_EQ(get.request.StatusCode(), status);
        EXPECT_EQ(get.body, "sorry");
    }
}

TEST(HttpRequest, FollowsRedirectsToTheFinalResponse) {
    Put("moved/final", "here");
    const Misbehaviour second("moved/second=redirect:/moved/final");
    const Misbehaviour first("moved/first=redirect:/moved/second");
    HttpGet get(Https(L"moved/first"));
    ASSERT_EQ(get.Run().error, Error::None);
    EXPECT_EQ(get.request.StatusCode(), 200u);
    EXPECT_EQ(get.request.RawHeaders().find(L"Location"), std::wstring::npos);
    EXPECT_EQ(get.body, "here");

    const Misbehaviour endless("moved/endless=redirect:self");
    HttpGet lost(Http(L"moved/endless"));
    lost.Run();
    EXPECT_TRUE(lost.error != Error::None || lost.request.StatusCode() != 200u);
}

TEST(HttpRequest, TellsLengthsBeyondFourGibibytes) {
    const Misbehaviour misbehaviour("huge=empty,length:5G,cut:0");
    HttpGet get(Http(L"huge"));
    ASSERT_EQ(get.Send().error, Error::None);
    EXPECT_EQ(get.request.ContentLength(), L"5368709120");
}

TEST(HttpRequest, TellsWhyThereIsNoResponse) {
    {
        const Misbehaviour refusing("@http=refuse");
        DropConnections();
        EXPECT_EQ(HttpGet(Http(L"x")).Run().error, Error::HttpCannotConnect);
    }
    EXPECT_EQ(HttpGet(L"http://nowhere.invalid/").Run().error, Error::HttpNameNotResolved);
    const Misbehaviour closing("@http=close");
    DropConnections();
    EXPECT_NE(HttpGet(Http(L"x")).Run().error, Error::None);
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

TEST(HttpRequest, LeavesNoRestOfAnAbandonedBodyToTheNextRequest) {
    Put("next", "text");
    const Misbehaviour misbehaviour("abandoned=junk:4M");
    HttpGet get(Http(L"abandoned"));
    std::byte first{};
    std::size_t got = 0;
    ASSERT_EQ(get.Send().request.Read(std::span(&first, 1), got), Error::None);
    EXPECT_EQ(got, 1u);
    get.request.Close();
    EXPECT_EQ(HttpGet(Http(L"next")).Run().body, "text");
}

TEST(CheckConnection, TellsAnOpenPortFromAClosedOne) {
    EXPECT_EQ(Platform::CheckConnection(Http(L"")), Error::None);
    const Misbehaviour refusing("@http=refuse");
    EXPECT_NE(Platform::CheckConnection(Http(L"")), Error::None);
    EXPECT_NE(Platform::CheckConnection(L"http://nowhere.invalid/"), Error::None);
    EXPECT_NE(Platform::CheckConnection(L"nonsense"), Error::None);
}

}  // namespace
