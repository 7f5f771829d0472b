#include "install/file_list.h"

#include <gtest/gtest.h>

namespace Launcher {
namespace {

TEST(FileList, TakesUsableLinesAndSkipsTheRest) {
    const std::vector<FileListEntry> entries = ParseFileList(
        "readme.txt=123\t10\r\n"
        "\n"
        "no size=123\n"
        "=1\t5\n"
        "no equals\t5\n"
        "locale\\hu\\text.txt=\t20 \t\n"
        "\xD0\xB4.dat=x=y\t18446744073709551615\n"
        "empty.dat=0\tnothing\n"
        "last.dat=1\t7");
    const std::pair<std::wstring, std::uint64_t> expected[] = {
        {L"readme.txt", 10},
        {L"locale/hu/text.txt", 20},
        {L"\u0434.dat", 18446744073709551615U},
        {L"empty.dat", 0},
        {L"last.dat", 7},
    };
    ASSERT_EQ(entries.size(), std::size(expected));
    for (std::size_t index = 0; index < entries.size(); ++index) {
        EXPECT_EQ(std::pair(entries[index].path, entries[index].size), expected[index]);
    }
}

TEST(FileList, SkipsWhatWouldLeaveTheFolderOrBeNoFile) {
    const char* const names[] = {"../x",        "a/../../x", "a..b",     "/etc/x", "\\windows\\x",
                                 "C:\\x",       "c:x",       "x:stream", "NUL",    "a/con.txt",
                                 "deleted:old", "a/",        "x ",       "x."};
    for (const char* name : names) {
        EXPECT_TRUE(ParseFileList(std::string(name) + "=1\t5").empty()) << name;
    }
}

}  // namespace
}  // namespace Launcher
