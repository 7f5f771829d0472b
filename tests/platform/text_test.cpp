#include "platform/text.h"

#include <clocale>
#include <gtest/gtest.h>

namespace Platform {
namespace {

TEST(Text, WhatIsNoTextIsReplaced) {
    for (const char* text : {"a\xff"
                             "b",
                             "a\xc0\x80"
                             "b",
                             "a\xed\xa0\x80"
                             "b",
                             "a\xe9\x81"}) {
        const std::wstring wide = WideFromUtf8(text);
        EXPECT_EQ(wide.front(), L'a');
        EXPECT_NE(wide.find(L'\xFFFD'), wide.npos) << text;
    }
    std::wstring lone = L"a?b";
    lone[1] = static_cast<wchar_t>(0xD800);
    EXPECT_EQ(Utf8FromWide(lone),
              "a\xef\xbf\xbd"
              "b");
}

TEST(Text, LowerCaseIsTheSameInEveryLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", ""}) {
        std::setlocale(LC_ALL, locale);
        EXPECT_EQ(LowerCase(L"Tolvan ONLINE 9_\u00c4\u00d6 \u0418\u0413\u0420\u0410 \u0391\u03a9"),
                  L"tolvan online 9_\u00e4\u00f6 \u0438\u0433\u0440\u0430 \u03b1\u03c9");
    }
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_TRUE(EqualIgnoringCase(L"\u00c5ngstr\u00f6m", L"\u00e5NGSTR\u00d6M"));
    EXPECT_FALSE(EqualIgnoringCase(L"a", L"ab"));
    EXPECT_FALSE(EqualIgnoringCase(L"a", L"b"));
}

}  // namespace
}  // namespace Platform
