#include <gtest/gtest.h>

#include "platform/http.h"

namespace {

using Platform::CrackedUrl;
using Platform::CrackUrl;
using Platform::Error;

TEST(CrackUrl, TakesAnAddressApart) {
    struct Case {
        const wchar_t* url;
        bool secure;
        const wchar_t* host;
        int port;
        const wchar_t* path;
    };
    const Case cases[] = {
        {L"http://h", false, L"h", 0, L"/"},
        {L"https://h.example/", true, L"h.example", 0, L"/"},
        {L"HTTPS://H.Example:444/P", true, L"H.Example", 444, L"/P"},
        {L"http://h:81/a/b?c=d&e", false, L"h", 81, L"/a/b?c=d&e"},
        {L"http://h?q=1", false, L"h", 0, L"/?q=1"},
        {L"http://h:/p", false, L"h", 0, L"/p"},
        {L"http://h:65535/", false, L"h", 65535, L"/"},
        {L"http://user:word@h:82/x", false, L"h", 82, L"/x"},
        {L"http://[::1]:83/x", false, L"[::1]", 83, L"/x"},
        {L"http://h/a b%20c", false, L"h", 0, L"/a b%20c"},
        {L"http://h/a@b:c", false, L"h", 0, L"/a@b:c"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(row.url)));
        CrackedUrl parts;
        ASSERT_EQ(CrackUrl(row.url, parts), Error::None);
        EXPECT_EQ(parts.secure, row.secure);
        EXPECT_EQ(parts.host, row.host);
        EXPECT_EQ(parts.port, row.port);
        EXPECT_EQ(parts.path, row.path);
    }
}

TEST(CrackUrl, RefusesWhatItCannotFetch) {
    for (const wchar_t* url : {L"", L"h", L"//h/x", L"ftp://h/x", L"file:///c:/x", L"httpx://h/",
                               L" http://h/", L"http://", L"http:///p", L"http://:80/x"}) {
        CrackedUrl parts;
        EXPECT_NE(CrackUrl(url, parts), Error::None) << testing::PrintToString(std::wstring(url));
    }
    CrackedUrl parts;
    EXPECT_EQ(CrackUrl(L"ftp://h/x", parts), Error::HttpUnknownScheme);
    EXPECT_EQ(CrackUrl(L"http:///x", parts), Error::HttpInvalidUrl);
}

TEST(CrackUrl, BoundsHostAndPath) {
    const std::wstring start = L"http://";
    CrackedUrl parts;
    EXPECT_EQ(CrackUrl(start + std::wstring(511, L'h') + L"/", parts), Error::None);
    EXPECT_NE(CrackUrl(start + std::wstring(512, L'h') + L"/", parts), Error::None);
    EXPECT_EQ(CrackUrl(start + L"h/" + std::wstring(2046, L'p'), parts), Error::None);
    EXPECT_NE(CrackUrl(start + L"h/" + std::wstring(2047, L'p'), parts), Error::None);
}

}  // namespace
