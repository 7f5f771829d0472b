#include "platform/processes.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "support/helper_process.h"
#include "support/test_files.h"

using namespace Platform;
using namespace TestSupport;

namespace {

bool IsListed(std::uint32_t id, const std::wstring& fileName) {
    const std::vector<RunningProcess> processes = ListProcesses();
    return std::any_of(processes.begin(), processes.end(), [&](const RunningProcess& process) {
        return process.id == id && EqualIgnoringCase(process.fileName, fileName);
    });
}

}  // namespace

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

TEST(Processes, TheProgramAloneGetsAnEmptyLine) {
    const std::wstring folder = MakeTestFolder();
    const std::wstring program = folder + L"\\plain.exe";
    InstallHelper(program);
    std::uint32_t id = 0;
    ASSERT_EQ(StartProcess({program, L'"' + program + L'"', folder}, id), Error::None);
    EXPECT_TRUE(WaitUntil([&] { return HasProcessEnded(id); }));
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

TEST(Processes, AProgramSomebodyKeepsForHimselfDoesNotStart) {
    const std::wstring program = MakeTestFolder() + L"\\kept.exe";
    InstallHelper(program);
    File keeper;
    ASSERT_EQ(keeper.Open(program, {.sharing = ShareNone}), Error::None);
    std::uint32_t id = 0;
    EXPECT_EQ(StartProcess({program, L'"' + program + L'"', {}}, id), Error::SharingViolation);
    ASSERT_EQ(keeper.Open(program, {.sharing = ShareRead}), Error::None);
    EXPECT_EQ(StartProcess({program, L'"' + program + L'"', {}}, id), Error::None);
    EXPECT_TRUE(WaitUntil([&] { return HasProcessEnded(id); }));
}

TEST(Processes, ARunningProgramIsListedUntilItEnds) {
    const std::wstring folder = MakeTestFolder();
    const std::wstring program = folder + L"\\.Tolvan Test Client.exe";
    InstallHelper(program);
    HelperProcess process;
    ASSERT_EQ(process.Start(program, {L"stay", folder + L"\\ready", folder + L"\\stop"}),
              Error::None);
    EXPECT_FALSE(HasProcessEnded(process.Id()));
    ASSERT_TRUE(WaitForFile(folder + L"\\ready"));
    EXPECT_TRUE(IsListed(process.Id(), L".Tolvan Test Client.exe"));
    EXPECT_TRUE(EqualIgnoringCase(GetProcessImagePath(process.Id()), program));
    EXPECT_FALSE(HasMainWindow(process.Id()));
    EXPECT_FALSE(HasProcessEnded(process.Id()));

    WriteText(folder + L"\\stop", "");
    EXPECT_TRUE(process.WaitForEnd());
    EXPECT_FALSE(IsListed(process.Id(), L".Tolvan Test Client.exe"));
}

TEST(Processes, AProgramOutlivesItsStarter) {
    const std::wstring folder = MakeTestFolder();
    InstallHelper(folder + L"\\starter.exe");
    InstallHelper(folder + L"\\survivor.exe");
    HelperProcess starter;
    ASSERT_EQ(starter.Start(folder + L"\\starter.exe", {L"chain", folder + L"\\survivor.exe",
                                                        folder + L"\\ready", folder + L"\\stop"}),
              Error::None);
    ASSERT_TRUE(WaitForFile(folder + L"\\ready"));
    ASSERT_TRUE(starter.WaitForEnd());
    const std::vector<RunningProcess> processes = ListProcesses();
    const auto survivor = std::find_if(
        processes.begin(), processes.end(),
        [](const RunningProcess& process) { return process.fileName == L"survivor.exe"; });
    ASSERT_NE(survivor, processes.end());
    EXPECT_FALSE(HasProcessEnded(survivor->id));
    WriteText(folder + L"\\stop", "");
    EXPECT_TRUE(WaitUntil([&] { return HasProcessEnded(survivor->id); }));
}

TEST(Processes, AKilledOneHasEnded) {
    const std::wstring folder = MakeTestFolder();
    InstallHelper(folder + L"\\killed.exe");
    HelperProcess process;
    ASSERT_EQ(
        process.Start(folder + L"\\killed.exe", {L"stay", folder + L"\\ready", folder + L"\\stop"}),
        Error::None);
    ASSERT_TRUE(WaitForFile(folder + L"\\ready"));
    KillProcess(process.Id());
    EXPECT_TRUE(process.WaitForEnd());
}

TEST(Processes, IdsThatNobodyHasHaveEnded) {
    EXPECT_TRUE(HasProcessEnded(0));
    EXPECT_TRUE(HasProcessEnded(0x7FFFFFF0));
    EXPECT_TRUE(HasProcessEnded(0xFFFFFFF0));
    EXPECT_EQ(GetProcessImagePath(0x7FFFFFF0), L"");
    EXPECT_FALSE(IsProcessIdle(0x7FFFFFF0));
    EXPECT_FALSE(HasMainWindow(0x7FFFFFF0));
}

TEST(Processes, ThisOneKnowsItself) {
    EXPECT_FALSE(HasProcessEnded(OwnProcessId()));
    const std::wstring path = OwnPath();
    EXPECT_EQ(GetProcessImagePath(OwnProcessId()), path);
    EXPECT_TRUE(IsListed(OwnProcessId(), path.substr(path.rfind(L'\\') + 1)));
}

TEST(Processes, ABusyOneIsNotIdle) {
    const std::wstring folder = MakeTestFolder();
    InstallHelper(folder + L"\\busy.exe");
    HelperProcess process;
    ASSERT_EQ(
        process.Start(folder + L"\\busy.exe", {L"burn", folder + L"\\ready", folder + L"\\stop"}),
        Error::None);
    ASSERT_TRUE(WaitForFile(folder + L"\\ready"));
    EXPECT_FALSE(IsProcessIdle(process.Id()));
}
