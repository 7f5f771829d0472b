#include "platform/host/command_line.h"

#include <gtest/gtest.h>

using namespace Platform::Host;

TEST(CommandLine, IsSplitByTheRulesOfWindows) {
    using Arguments = std::vector<std::string>;
    const std::pair<const char*, Arguments> cases[] = {
        {R"()", {""}},
        {R"(p)", {"p"}},
        {R"("C:\A B\p.exe")", {R"(C:\A B\p.exe)"}},
        {R"("C:\A B\p.exe"  )", {R"(C:\A B\p.exe)"}},
        {R"("C:\A\" x)", {R"(C:\A\)", "x"}},
        {R"(C:\"A B"\p x)", {R"(C:\A B\p)", "x"}},
        {"p a\tb  c ", {"p", "a", "b", "c"}},
        {R"(p "a b" c)", {"p", "a b", "c"}},
        {R"(p a"b c"d)", {"p", "ab cd"}},
        {R"(p "" x)", {"p", "", "x"}},
        {R"(p "a""b" c)", {"p", R"(a"b)", "c"}},
        {R"(p \"a\" b)", {"p", R"("a")", "b"}},
        {R"(p a\b\\c)", {"p", R"(a\b\\c)"}},
        {R"(p "a\\" b)", {"p", R"(a\)", "b"}},
        {R"(p "a\\\" b")", {"p", R"(a\" b)"}},
        {R"(p "open quote)", {"p", "open quote"}},
        {R"(p --target="C:\A B" --sub=1)", {"p", R"(--target=C:\A B)", "--sub=1"}},
    };
    for (const auto& [line, arguments] : cases) {
        EXPECT_EQ(SplitCommandLine(line), arguments) << line;
    }
}
