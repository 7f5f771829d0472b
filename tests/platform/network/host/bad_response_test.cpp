#include <gtest/gtest.h>
#include <string>

#include "platform/network/host/listener.h"
#include "support/http_get.h"
#include "support/test_server.h"

namespace {

using Platform::Error;
using namespace TestServer;

// The surplus stays on the connection, where the next response should begin.
TEST(HttpBadResponse, MayBeLongerThanTold) {
    const Misbehaviour misbehaviour("too_long=big:420042,length:420000");
    const std::string expected = BigBody(420'000);
    for (const std::wstring& url : {Http(L"too_long"), Https(L"too_long")}) {
        for (int turn = 0; turn < 5; ++turn) {
            HttpGet get(url);
            EXPECT_EQ(get.Run().error, Error::None);
            EXPECT_TRUE(get.body == expected);
        }
    }
}

TEST(HttpBadResponse, IsRefused) {
    const std::string start = "HTTP/1.1 200 OK\r\nContent-Length: 4\r\n";
    std::string endless = start;
    for (int i = 0; i < 200'000; ++i) {
        endless += "X-Line: 123456789\r\n";
    }
    const std::string answers[] = {
        "",
        "junk",
        "junk\r\n\r\njunk",
        "HTTP/1.1 200 OK\r\nContent-Le",
        start,
        start + std::string(3'000'000, 'x'),
        endless,
        "HTTP/1.1 200 OK\r\nContent-Length: none\r\n\r\ntext",
        "HTTP/1.1 302 Found\r\nLocation: ftp://127.0.0.1/\r\n\r\n",
        "HTTP/1.1 302 Found\r\nLocation: file:///etc/passwd\r\n\r\n",
    };
    for (const std::string& answer : answers) {
        SCOPED_TRACE(answer.substr(0, 80));
        const RawServer server(answer);
        EXPECT_NE(HttpGet(server.Url()).Run().error, Error::None);
    }
}

}  // namespace
