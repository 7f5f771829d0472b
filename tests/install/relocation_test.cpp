#include "install/relocation.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/path_text.h"
#include "install/copy_search.h"
#include "install/game_folder.h"
#include "install/path_rules.h"
#include "install/settings_store.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/shell_links.h"
#include "platform/text.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using namespace TestSupport;

/// A folder that looks like an installed game.
std::wstring MakeGame(const std::wstring& folder) {
    EXPECT_TRUE(CreateFolderPath(folder + L"\\Data"));
    WriteText(folder + L"\\.Tolvan Online.exe", "a client");
    WriteText(folder + L"\\Data\\file", "data");
    return folder;
}

std::wstring TargetOf(const std::wstring& linkPath) {
    const Platform::ShellApartment apartment;
    Platform::ShellLink link;
    EXPECT_EQ(Platform::LoadShellLink(linkPath, link), Platform::Error::None);
    return link.target;
}

TEST(RelocateTarget, EndsInTheGamesNameOnce) {
    EXPECT_EQ(ResolveRelocateTarget(L"D:/Games//", true), L"D:\\Games\\Tolvan Online");
    EXPECT_EQ(ResolveRelocateTarget(L"D:\\tolvan ONLINE\\", true), L"D:\\tolvan ONLINE");
    EXPECT_EQ(ResolveRelocateTarget(L"D:\\Games", false), L"D:\\Games");
    EXPECT_EQ(ResolveRelocateTarget(L"D:\\", true), L"D:\\Tolvan Online");
    EXPECT_EQ(ResolveRelocateTarget(L"", true), L"");
}

TEST(Relocation, RecordsPointAtTheCopyBeforeTheOldFolderGoes) {
    const std::wstring root = MakeTestFolder();
    const std::wstring game = MakeGame(root + L"\\old");
    const std::wstring target = L"D:\\Relocation " + FileNameOf(root);
    ASSERT_TRUE(WriteUninstallEntry(game, 1, nullptr));
    Platform::File held;
    MoveHooks hooks;
    hooks.onStanding = [&] {
        EXPECT_EQ(GetInstallLocation(), target);
        EXPECT_EQ(ReadText(game + L"\\Data\\file"), "data");
        EXPECT_EQ(held.Open(game + L"\\Data\\file", {.sharing = Platform::ShareRead}),
                  Platform::Error::None);
    };
    MoveResult result;
    EXPECT_FALSE(MoveInstallation(game, target, hooks, result));
    EXPECT_EQ(result.code, MoveCode::LeftBehind);
    EXPECT_EQ(result.leftoverFolder, game);
    EXPECT_EQ(GetInstallLocation(), target);
    EXPECT_EQ(ReadText(target + L"\\Data\\file"), "data");
}

TEST(Relocation, RecordsFollowAMoveThatWasCutShortBehindItsRename) {
    const std::wstring root = MakeTestFolder();
    const std::wstring game = MakeGame(root + L"\\old");
    ASSERT_TRUE(WriteUninstallEntry(game, 1, nullptr));
    SetLastInstallPath(root + L"\\new");
    RecoverInterruptedMove();
    EXPECT_EQ(GetInstallLocation(), game) << "nothing is cut short";
    ASSERT_EQ(Platform::MovePath(game, root + L"\\elsewhere", {}), Platform::Error::None);
    RecoverInterruptedMove();
    EXPECT_EQ(GetInstallLocation(), game) << "a game that has gone is not made up";
    ASSERT_EQ(Platform::MovePath(root + L"\\elsewhere", root + L"\\new", {}),
              Platform::Error::None);
    RecoverInterruptedMove();
    EXPECT_EQ(GetInstallLocation(), root + L"\\new");
    EXPECT_EQ(TargetOf(DesktopShortcutPath()), root + L"\\new\\Tolvan Online.exe");
}

class CopySearchTest : public testing::Test {
protected:
    void Mark(const std::wstring& folder, const std::wstring& file = L"Tolvan Online.exe") {
        ASSERT_TRUE(CreateFolderPath(folder));
        WriteText(JoinPath(folder, file), "a marker");
        marked_.push_back(JoinPath(folder, file));
    }
    ~CopySearchTest() override {
        for (const std::wstring& file : marked_)
            (void)Platform::RemoveFile(file);
    }
    std::vector<std::wstring> marked_;
};

TEST_F(CopySearchTest, FindsOnRootsAndTwoLevelsBelowAndNoDeeper) {
    const std::wstring programs = Platform::GetEnvironmentText(L"ProgramFiles");
    const std::wstring local = Platform::GetEnvironmentText(L"LOCALAPPDATA");
    Mark(L"D:\\");
    Mark(L"D:\\one", L"Tolvan Online_x64.exe");
    Mark(L"D:\\one\\two", L"Tolvan Online_x86.exe");
    Mark(L"D:\\one\\two\\three");
    Mark(programs + L"\\Tolvan Online");
    Mark(local + L"\\a\\b");
    ASSERT_TRUE(CreateFolderPath(L"D:\\folder\\Tolvan Online.exe"));
    const std::vector<std::wstring> found = FindInstalledCopies(nullptr, nullptr, nullptr);
    // Other tests may have left copies of their own.
    EXPECT_THAT(found, testing::IsSupersetOf({programs + L"\\Tolvan Online", local + L"\\a\\b",
                                              std::wstring(L"D:"), std::wstring(L"D:\\one"),
                                              std::wstring(L"D:\\one\\two")}));
    for (const wchar_t* wrong : {L"D:\\one\\two\\three", L"D:\\folder"})
        EXPECT_EQ(std::count(found.begin(), found.end(), wrong), 0) << wrong;
    EXPECT_EQ(found.front(), programs + L"\\Tolvan Online");
    (void)Platform::RemoveEmptyFolder(L"D:\\folder\\Tolvan Online.exe");
}

TEST_F(CopySearchTest, StopsWhenAskedTo) {
    Mark(L"D:\\one");
    int visited = 0;
    const auto found = FindInstalledCopies([&](const std::wstring&) { ++visited; }, nullptr,
                                           [&] { return visited == 2; });
    EXPECT_EQ(visited, 2);
    EXPECT_TRUE(found.empty());
}

}  // namespace
}  // namespace Launcher
