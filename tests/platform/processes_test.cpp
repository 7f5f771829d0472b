#include "platform/processes.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/text.h"
#include "support/helper_process.h"
#include "support/test_files.h"

using namespace Platform;
using namespace TestSupport;

TEST(Processes, CommandLinesArriveAsTheyWereGiven) {
    const std::wstring folder = MakeTestFolder() + L"\\The Game \u017Fpiel \u4E2D\u6587";
    ASSERT_EQ(MakeFolder(folder), Error::None);
    const std::wstring program = folder + L"\\.A Program's name.exe";
    InstallHelper(program);
    const std::wstring lines[] = {
        L"report|",
        L"report|--op=move --target=\"C:\\Games\\Tolvan Online\" --dest=\"D:\\\"",
        L"report|\"open quote",
        L"report|a  b\tc   ",
        L"report|back\\slashes\\\\ \\\"quoted\\\" \"\"",
        L"report|\u00E4\u00F6\u00FC \u0416\u0438 \u4E2D\u6587 \U0001F3AE %PATH% $HOME 'x' `y` *.?",
        L"report|" + std::wstring(20'000, L'x'),
    };
    for (const std::wstring& line : lines) {
        std::uint32_t id = 0;
        const std::wstring report = folder + L"\\report.txt";
        ASSERT_EQ(StartProcess({program, L'"' + program + L"\" " + line, folder}, id), Error::None);
        ASSERT_TRUE(WaitForFile(report)) << Utf8FromWide(line);
        EXPECT_EQ(ReadText(report), Utf8FromWide(line));
        ASSERT_TRUE(WaitUntil([&] { return HasProcessEnded(id); }));
        ASSERT_EQ(RemoveFile(report), Error::None);
    }
}
