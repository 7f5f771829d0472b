#include <gtest/gtest.h>

#include "install/game_folder.h"
#include "install/install_engine.h"
#include "install/path_rules.h"
#include "install/settings_store.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/shell_links.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using namespace TestSupport;

class Uninstall : public testing::Test {
protected:
    Uninstall() {
        const Platform::ShellApartment apartment;
        for (const wchar_t* name : {L"\\.Tolvan Online.exe", L"\\Data\\a.dat", L"\\Data\\б.dat"}) {
            EXPECT_TRUE(CreateFolderPath(game_ + L"\\Data"));
            WriteText(game_ + name, "content");
        }
        WriteText(game_ + L" beside", "a neighbour");
        EXPECT_TRUE(WriteUninstallEntry(game_, 1000, nullptr));
        EXPECT_TRUE(CreateDesktopShortcut(game_, nullptr));
        EXPECT_TRUE(CreateStartMenuEntry(game_, nullptr));
    }

    static InstallProgress Run(const std::wstring& folder) {
        InstallEngine engine;
        engine.ConfigureUninstall(folder, false);
        engine.StartUninstall();
        engine.CancelInstall();  // it only cuts the time short for which each stage is shown
        EXPECT_TRUE(WaitUntil([&] { return !engine.GetProgress().running; }));
        return engine.GetProgress();
    }

    void ExpectRecordsGone() const {
        EXPECT_EQ(GetInstallLocation(), L"");
        EXPECT_FALSE(Platform::PathExists(DesktopShortcutPath()));
        EXPECT_FALSE(Platform::PathExists(StartMenuFolder()));
        EXPECT_EQ(ReadText(game_ + L" beside"), "a neighbour");
    }

    const std::wstring game_ = MakeTestFolder() + L"\\Tolvan Online";
};

TEST_F(Uninstall, AFolderThatHasGoneIsRemoved) {
    EXPECT_TRUE(Run(game_ + L" gone").done);
    ExpectRecordsGone();
    EXPECT_TRUE(Platform::PathExists(game_ + L"\\Data\\a.dat"));
}

TEST_F(Uninstall, AFileInTheWayFailsTheFilesAndTheRestGoes) {
    Platform::File held;
    ASSERT_EQ(held.Open(game_ + L"\\Data\\a.dat", {.sharing = Platform::ShareRead}),
              Platform::Error::None);
    const InstallProgress end = Run(game_);
    EXPECT_TRUE(end.failed && !end.done && !end.running);
    EXPECT_EQ(end.error, L"The install folder could not be removed: " + game_);
    EXPECT_EQ(end.title, L"Failed: " + UninstallStages(true).back().title);
    EXPECT_TRUE(Platform::PathExists(game_ + L"\\Data\\a.dat"));
    EXPECT_FALSE(Platform::PathExists(game_ + L"\\Data\\б.dat"));
    ExpectRecordsGone();
}

TEST_F(Uninstall, AFolderThatMustStayStaysWhole) {
    const std::wstring profile = Platform::GetShellFolder(Platform::ShellFolder::Profile);
    WriteText(profile + L"\\of the player.txt", "kept");
    EXPECT_EQ(Run(profile).error, L"The install folder could not be removed: " + profile);
    EXPECT_EQ(ReadText(profile + L"\\of the player.txt"), "kept");
}

}  // namespace
}  // namespace Launcher
