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

TEST(Processes, FailuresToStartHaveTheirNumbers) {
    const std::wstring folder = MakeTestFolder();
    InstallHelper(folder + L"\\program.exe");
    WriteText(folder + L"\\text.exe", "This is no program, however long the text may be.\n");
    const struct {
        std::wstring application;
        std::wstring workingFolder;
        Error error;
    } cases[] = {
        {folder + L"\\missing.exe", folder, Error::FileNotFound},
        {folder + L"\\missing\\program.exe", folder, Error::PathNotFound},
        {folder + L"\\text.exe", folder, Error::BadExecutable},
        {folder + L"\\program.exe", folder + L"\\missing", Error::InvalidFolder},
    };
    for (const auto& [application, workingFolder, error] : cases) {
        std::uint32_t id = 0;
        EXPECT_EQ(StartProcess({application, L'"' + application + L'"', workingFolder}, id), error)
            << Utf8FromWide(application) << " in " << Utf8FromWide(workingFolder);
    }
}

TEST(Processes, IdsThatNobodyHasHaveEnded) {
    EXPECT_TRUE(HasProcessEnded(0));
    EXPECT_TRUE(HasProcessEnded(0x7FFFFFF0));
    EXPECT_TRUE(HasProcessEnded(0xFFFFFFF0));
    EXPECT_EQ(GetProcessImagePath(0x7FFFFFF0), L"");
    EXPECT_FALSE(IsProcessIdle(0x7FFFFFF0));
    EXPECT_FALSE(HasMainWindow(0x7FFFFFF0));
}
