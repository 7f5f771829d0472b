#include "patch/url_path.h"

#include <gtest/gtest.h>

namespace {

using Launcher::EncodeUrlPath;

TEST(EncodeUrlPath, KeepsWhatAPathMayHold) {
    const std::wstring plain = L"AZaz09-._~/";
    EXPECT_EQ(EncodeUrlPath(plain), plain);
    EXPECT_EQ(EncodeUrlPath(L""), L"");
}

TEST(EncodeUrlPath, WritesEveryOtherByteOfTheUtf8Text) {
    EXPECT_EQ(EncodeUrlPath(L"Tolvan Online.exe"), L"Tolvan%20Online.exe");
    EXPECT_EQ(EncodeUrlPath(L"a\\b?c#d%e+f:g"), L"a%5Cb%3Fc%23d%25e%2Bf%3Ag");
    EXPECT_EQ(EncodeUrlPath(L"\u00E9\u6F22"), L"%C3%A9%E6%BC%A2");
    EXPECT_EQ(EncodeUrlPath(L"\U0001F600"), L"%F0%9F%98%80");
}

}  // namespace
