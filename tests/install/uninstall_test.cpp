#include <gmock/gmock.h>
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

TEST(UninstallStages, KeptSettingsLeaveTheirWeightToTheFiles) {
    const auto kindsAndWeights = [](bool keep) {
        std::vector<std::pair<StageKind, double>> rows;
        for (const Stage& stage : UninstallStages(keep))
            rows.emplace_back(stage.kind, stage.weight);
        return rows;
    };
    using testing::ElementsAre;
    using testing::Pair;
    EXPECT_THAT(
        kindsAndWeights(false),
        ElementsAre(Pair(StageKind::RemoveSettings, 6.0), Pair(StageKind::RemoveShortcuts, 6.0),
                    Pair(StageKind::RemoveEntry, 8.0), Pair(StageKind::RemoveFiles, 80.0)));
    EXPECT_THAT(kindsAndWeights(true),
                ElementsAre(Pair(StageKind::RemoveShortcuts, 6.0),
                            Pair(StageKind::RemoveEntry, 8.0), Pair(StageKind::RemoveFiles, 86.0)));
}

class Uninstall : public testing::Test {
protected:
    Uninstall() {
        const Platform::ShellApartment apartment;
        for (const wchar_t* name : {L"\\.Tolvan Online.exe", L"\\Data\\a.dat", L"\\Data\\б.dat"}) {
            EXPECT_TRUE(CreateFolderPath(game_ + L"\\Data"));
            WriteText(game_ + name, "content");
        }
        WriteText(game_ + L" beside", "a neighbour");
        EXPECT_TRUE(WriteGameDefaults(3, nullptr));
        EXPECT_TRUE(WriteUninstallEntry(game_, 1000, nullptr));
        EXPECT_TRUE(CreateDesktopShortcut(game_, nullptr));
        EXPECT_TRUE(CreateStartMenuEntry(game_, nullptr));
    }

    InstallProgress Run(const std::wstring& folder, bool keepSettings) {
        InstallEngine engine;
        engine.ConfigureUninstall(folder, keepSettings);
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

TEST_F(Uninstall, LeavesNothing) {
    const InstallProgress end = Run(game_, false);
    EXPECT_TRUE(end.done && !end.failed && !end.cancelled);
    EXPECT_EQ(end.fraction, 1.0F);
    EXPECT_EQ(end.stageIndex, 4U);
    EXPECT_EQ(end.filesDone, 4U);
    EXPECT_FALSE(Platform::PathExists(game_));
    ExpectRecordsGone();
    EXPECT_EQ(GetLanguage(), -1);
    EXPECT_EQ(GetLastInstallPath(), L"");
}

TEST_F(Uninstall, KeepsTheSettingsAndNothingElse) {
    EXPECT_TRUE(Run(game_, true).done);
    EXPECT_FALSE(Platform::PathExists(game_));
    ExpectRecordsGone();
    EXPECT_EQ(GetLanguage(), 3);
    EXPECT_EQ(GetLastInstallPath(), game_);
}

TEST_F(Uninstall, AFolderThatHasGoneIsRemoved) {
    EXPECT_TRUE(Run(game_ + L" gone", false).done);
    ExpectRecordsGone();
    EXPECT_TRUE(Platform::PathExists(game_ + L"\\Data\\a.dat"));
}

TEST_F(Uninstall, AFileInTheWayFailsTheFilesAndTheRestGoes) {
    Platform::File held;
    ASSERT_EQ(held.Open(game_ + L"\\Data\\a.dat", {.sharing = Platform::ShareRead}),
              Platform::Error::None);
    const InstallProgress end = Run(game_, false);
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
    EXPECT_EQ(Run(profile, false).error, L"The install folder could not be removed: " + profile);
    EXPECT_EQ(ReadText(profile + L"\\of the player.txt"), "kept");
}

}  // namespace
}  // namespace Launcher
