#include "patch/file_names.h"

#include <gtest/gtest.h>

#include "platform/text.h"

namespace Launcher {
namespace {

TEST(FileNames, OnlyPathsThatStayInTheFolderPass) {
    const struct {
        std::wstring_view path;
        bool inside;
    } cases[] = {
        {L"Data/a.dat", true},
        {L"Data/deep/er/a b+c.dat", true},
        {L"Data\\mixed/separators\\a", true},
        {L"Data/\u65E5\u672C\u8A9E/\u0416.dat", true},
        {L"Data//doubled///a", true},
        {L"Data/./a", true},
        {L"Data/x/../a", true},
        {L"Data/../Data/a", true},
        {L"Data/../a", true},  // in the install folder itself
        {L"Data/.hidden", true},
        {L"Data/console/nullable.txt/com10/lpt", true},

        {L"Data/../../a", false},
        {L"Data\\..\\..\\a", false},
        {L"Data/x/../../../a", false},
        {L"Data/../../install/Data/a", false},  // out and in again
        {L"Data/./.././../a", false},
        {L"../a", false},

        {L"", false},
        {L"Data/", false},
        {L"Data/x/..", false},
        {L"Data/.", false},

        {L"Data/C:/Windows/a", false},
        {L"Data/C:a", false},
        {L"Data/a:stream", false},
        {L"Data/a::$DATA", false},

        // Windows drops these dots and blanks, so the name would be another one.
        {L"Data/.. /.. /a", false},
        {L"Data/.../a", false},
        {L"Data/a.", false},
        {L"Data/a ", false},
        {L"Data/folder./a", false},

        {L"Data/NUL", false},
        {L"Data/nul.txt", false},
        {L"Data/CoN/a", false},
        {L"Data/aux .tar.gz", false},
        {L"Data/COM1", false},
        {L"Data/lpt9.dat", false},
        {L"Data/COM\u00B2", false},
        {L"Data/CONOUT$", false},

        {L"Data/a?b", false},
        {L"Data/*", false},
        {L"Data/<a>", false},
        {L"Data/\"a\"", false},
        {L"Data/a|b", false},
        {L"Data/a\tb", false},
        {std::wstring_view(L"Data/a\0/../../b", 15), false},
    };
    for (const auto& [path, inside] : cases) {
        EXPECT_EQ(IsPathInsideFolder(path), inside) << Platform::Utf8FromWide(path);
    }
}

}  // namespace
}  // namespace Launcher
