#include "update/handoff.h"

#include <gtest/gtest.h>

#include "common/path_text.h"
#include "install/path_rules.h"
#include "install/settings_store.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/processes.h"
#include "platform/text.h"
#include "support/helper_process.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using Platform::Error;
using namespace TestSupport;

std::wstring WorkingFolderOf(std::uint32_t processId) {
    return Platform::GetTempFolder() + L"@tolvan_op_" + std::to_wstring(processId);
}

HandoffRequest Request(HandoffOperation op, const std::wstring& target) {
    HandoffRequest request;
    request.op = op;
    request.target = target;
    return request;
}

TEST(Handoff, CommandLineHoldsEverythingInItsOrder) {
    EXPECT_EQ(HandoffCommandLine(L"C:\\t\\Tolvan Online.exe",
                                 {.op = HandoffOperation::Uninstall,
                                  .target = L"C:\\My Games\\Игра",
                                  .dest = L"",
                                  .keepSettings = true,
                                  .sub = false,
                                  .position = {.x = -12, .y = 34}},
                                 4321),
              L"\"C:\\t\\Tolvan Online.exe\" --op=uninstall --target=\"C:\\My Games\\Игра\""
              L" --keepsettings=1 --sub=0 --waitpid=4321 --x=-12 --y=34");
    HandoffRequest move = Request(HandoffOperation::Move, L"C:\\b");
    move.dest = L"D:\\c d";
    EXPECT_EQ(HandoffCommandLine(L"C:\\a", move, 1),
              L"\"C:\\a\" --op=move --target=\"C:\\b\" --keepsettings=0 --sub=1 --waitpid=1"
              L" --x=0 --y=0 --dest=\"D:\\c d\"");
}

TEST(Handoff, NothingIsStartedWithoutAnOperationOnAReadablePath) {
    for (const HandoffRequest& request :
         {Request(HandoffOperation::None, L"C:\\x"), Request(HandoffOperation::Uninstall, L""),
          Request(HandoffOperation::Uninstall, L"C:\\x\" --op=\"move\" --dest=\"C:\\y")}) {
        std::wstring error;
        EXPECT_FALSE(SpawnHandoff(request, error));
        EXPECT_EQ(error, L"nothing to do");
    }
    EXPECT_FALSE(Platform::PathExists(WorkingFolderOf(Platform::OwnProcessId())));
}

TEST(Handoff, AWorkingFolderThatCannotBeEmptiedIsNotUsed) {
    const std::wstring folder = WorkingFolderOf(Platform::OwnProcessId());
    ASSERT_TRUE(CreateFolderPath(folder));
    WriteText(folder + L"\\held", "of a process that had this id before");
    Platform::File held;
    ASSERT_EQ(held.Open(folder + L"\\held", {.sharing = Platform::ShareRead}), Error::None);
    std::wstring error;
    const HandoffRequest request = Request(HandoffOperation::Uninstall, L"C:\\x");
    EXPECT_FALSE(SpawnHandoff(request, error));
    EXPECT_EQ(error, L"could not create a working directory");
    held.Close();
    ASSERT_EQ(Platform::RemoveFile(folder + L"\\held"), Error::None);
    ASSERT_EQ(Platform::RemoveEmptyFolder(folder), Error::None);
}

TEST(Handoff, LeftoversGoUnlessAProcessRunsFromThem) {
    const std::wstring left = WorkingFolderOf(111);
    const std::wstring used = WorkingFolderOf(222);
    const std::wstring foreign = Platform::GetTempFolder() + L"tolvan_op_333";
    for (const std::wstring& folder : {left + L"\\deeper", used, foreign}) {
        ASSERT_TRUE(CreateFolderPath(folder));
        WriteText(folder + L"\\launcher_boot.log", "");
    }
    WriteText(WorkingFolderOf(444), "a file");
    HelperProcess copy;
    InstallHelper(used + L"\\Tolvan Online.exe");
    ASSERT_EQ(copy.Start(used + L"\\Tolvan Online.exe",
                         {L"stay", foreign + L"\\ready", foreign + L"\\stop"}),
              Error::None);
    ASSERT_TRUE(WaitForFile(foreign + L"\\ready"));

    PurgeOldWorkingFolders();
    EXPECT_FALSE(Platform::PathExists(left));
    EXPECT_TRUE(Platform::PathExists(used + L"\\launcher_boot.log"));
    EXPECT_TRUE(Platform::PathExists(foreign));
    EXPECT_TRUE(Platform::PathExists(WorkingFolderOf(444)));

    WriteText(foreign + L"\\stop", "");
    ASSERT_TRUE(copy.WaitForEnd());
    PurgeOldWorkingFolders();
    EXPECT_FALSE(Platform::PathExists(used));
}

/// As a copy writes it before it removes the folder.
void WriteNote(const std::wstring& working, const std::wstring& folder) {
    std::wstring identity;
    EXPECT_EQ(Platform::GetIdentity(folder, identity), Error::None);
    ASSERT_TRUE(CreateFolderPath(working));
    WriteText(working + L"\\removal.txt", Platform::Utf8FromWide(folder + L"\n" + identity));
}

TEST(Handoff, ARemovalThatWasCutOffIsFinishedUnlessTheFolderIsRegistered) {
    const std::wstring game = MakeTestFolder() + L"\\Игра";
    const std::wstring working = WorkingFolderOf(555);
    const auto cutOff = [&] {
        ASSERT_TRUE(CreateFolderPath(game + L"\\Data"));
        WriteText(game + L"\\Data\\a.dat", "a");
        WriteNote(working, game);
    };
    cutOff();
    SetInstallLocation(game);
    PurgeOldWorkingFolders();
    EXPECT_TRUE(Platform::PathExists(game + L"\\Data\\a.dat"));
    EXPECT_FALSE(Platform::PathExists(working));

    cutOff();
    SetInstallLocation(L"C:\\Games\\Another");
    Platform::File held;
    ASSERT_EQ(held.Open(game + L"\\Data\\a.dat", {.sharing = Platform::ShareRead}), Error::None);
    PurgeOldWorkingFolders();
    EXPECT_TRUE(Platform::PathExists(working + L"\\removal.txt")) << "it waits for a later start";
    held.Close();
    PurgeOldWorkingFolders();
    EXPECT_FALSE(Platform::PathExists(game));
    EXPECT_FALSE(Platform::PathExists(working));

    // What must not be deleted is not, whatever a note says.
    WriteNote(working, FolderOf(game) + L"\\..\\..");
    PurgeOldWorkingFolders();
    EXPECT_TRUE(Platform::PathExists(FolderOf(game)));
    EXPECT_FALSE(Platform::PathExists(working));

    // Nor is what has come to the place since.
    cutOff();
    ASSERT_EQ(Platform::MovePath(game, game + L" before", {}), Error::None);
    ASSERT_TRUE(CreateFolderPath(game + L"\\mine"));
    PurgeOldWorkingFolders();
    EXPECT_TRUE(Platform::PathExists(game + L"\\mine"));
    EXPECT_FALSE(Platform::PathExists(working));
}

}  // namespace
}  // namespace Launcher
