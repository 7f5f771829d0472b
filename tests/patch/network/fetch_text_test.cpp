#include <gtest/gtest.h>

#include "patch/fetch.h"
#include "support/test_server.h"

namespace {

using Launcher::FetchText;
using namespace TestServer;

TEST(FetchText, ReadsUpToItsCap) {
    struct Case {
        const char* rule;
        std::size_t size;
    };
    for (const Case& row : {Case{"text=big:4200", 4200}, Case{"text=big:420000,chunked", 420'000},
                            Case{"text=big:21000,no-length", 21'000}}) {
        SCOPED_TRACE(row.rule);
        const Misbehaviour misbehaviour(row.rule);
        std::string text = "old";
        std::wstring errorText = L"untouched";
        EXPECT_TRUE(FetchText(Https(L"text"), text, &errorText, row.size, {}));
        EXPECT_TRUE(text == BigBody(row.size));
        EXPECT_EQ(errorText, L"untouched");

        EXPECT_FALSE(FetchText(Https(L"text"), text, &errorText, row.size - 1, {}));
        EXPECT_EQ(text, "");
        EXPECT_EQ(errorText, L"The manifest was larger than expected");
    }
}

TEST(FetchText, SaysWhyThereIsNoText) {
    struct Case {
        const char* rule;
        const wchar_t* text;
    };
    const Case cases[] = {
        {"text=status:404", L"The manifest request failed (HTTP 404)"},
        {"text=empty", L"The manifest was empty"},
        {"text=junk:1M,cut:0", L"The manifest was empty"},
        {"text=endless", L"The manifest was larger than expected"},
        {"text=redirect:self", L"Could not open the manifest URL"},
        {"@https=close", L"Could not open the manifest URL"},
        {"@https=refuse", L"Could not open the manifest URL"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.rule);
        const Misbehaviour misbehaviour(row.rule);
        DropConnections();
        std::string text = "old";
        std::wstring errorText;
        EXPECT_FALSE(FetchText(Https(L"text"), text, &errorText, 4096, {}));
        EXPECT_EQ(errorText, row.text);
        EXPECT_EQ(text, "");
        EXPECT_FALSE(FetchText(Https(L"text"), text, nullptr, 4096, {}));
    }
}

}  // namespace
