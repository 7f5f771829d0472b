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
    CrackedUrl parts;
    const std::wstring longest = L"http://h/" + std::wstring(2046, L'p');
    EXPECT_EQ(CrackUrl(longest, parts), Error::None);
    for (const std::wstring& url : {std::wstring(L""), std::wstring(L"h"), std::wstring(L"//h/x"),
                                    std::wstring(L"httpx://h/"), std::wstring(L"file:///c:/x"),
                                    std::wstring(L" http://h/"), std::wstring(L"http:///p"),
                                    L"http://" + std::wstring(512, L'h') + L"/", longest + L"p"}) {
        EXPECT_NE(CrackUrl(url, parts), Error::None) << testing::PrintToString(url);
    }
}

}  // namespace
