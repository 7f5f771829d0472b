// Whatever the disk holds, an uninstall or a move takes exactly the game's tree, its keys and its
// links, and nothing else changes by a byte.

#include <cstdlib>
#include <gtest/gtest.h>

#include "common/path_text.h"
#include "install/folder_tree.h"
#include "install/game_folder.h"
#include "install/install_engine.h"
#include "install/path_rules.h"
#include "install/relocation.h"
#include "install/settings_store.h"
#include "install/trees/machine_snapshot.h"
#include "install/trees/tree_generator.h"
#include "platform/files.h"
#include "platform/registry.h"
#include "platform/shell_links.h"
#include "platform/text.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using Platform::Utf8FromWide;
using namespace TestSupport;

const RegistryRecord g_otherProduct{L"Software\\TolvanOnline2\\Settings"};
const RegistryRecord g_otherEntry{
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TolvanOnline2"};

unsigned NumberFrom(const char* variable, unsigned fallback) {
    const char* text = std::getenv(variable);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : fallback;
}

class Departure : public testing::TestWithParam<unsigned> {
protected:
    void SetUp() override {
        const Platform::ShellApartment apartment;
        ASSERT_NO_FATAL_FAILURE(generator_.Make(area_));
        ASSERT_TRUE(WriteGameDefaults(2, nullptr));
        ASSERT_TRUE(WriteUninstallEntry(Game(), 1, nullptr));
        ASSERT_TRUE(CreateDesktopShortcut(Game(), nullptr));
        ASSERT_TRUE(CreateStartMenuEntry(Game(), nullptr));
        for (const RegistryRecord& record : {g_otherProduct, g_otherEntry})
            record.WriteString(L"InstallLocation", Game());
        before_ = TakeSnapshot();
    }
    void TearDown() override {
        held_.Close();
        (void)RemoveInstallFolder(FolderOf(area_), nullptr);
        (void)RemoveInstallFolder(otherArea_, nullptr);
        for (const RegistryRecord& record : {g_otherProduct, g_otherEntry})
            EXPECT_EQ(record.ReadString(L"InstallLocation", L""), game_);
    }

    const std::wstring& Game() {
        game_ = generator_.Game();
        return game_;
    }
    void HoldSomeFile() {
        if (generator_.GameFiles().empty()) return;
        heldPath_ = generator_.GameFiles()[generator_.Below(generator_.GameFiles().size())];
        ASSERT_EQ(held_.Open(heldPath_, {.sharing = Platform::ShareRead}), Platform::Error::None);
    }

    const std::wstring area_ = MakeTestFolder() + L"\\area";
    const std::wstring otherArea_ = L"D:\\" + FileNameOf(FolderOf(area_));
    TreeGenerator generator_{NumberFrom("TOLVAN_SEED", 1) * 1'000'000 + GetParam()};
    std::wstring game_;
    Snapshot before_;
    Platform::File held_;
    std::wstring heldPath_;
};

TEST_P(Departure, AnUninstallTakesTheTreeTheKeysAndTheLinks) {
    const bool keep = generator_.OneIn(2);
    if (generator_.OneIn(12)) HoldSomeFile();
    InstallEngine engine;
    engine.ConfigureUninstall(Game(), keep);
    engine.StartUninstall();
    engine.CancelInstall();  // it only cuts the time short for which each stage is shown
    ASSERT_TRUE(WaitUntil([&] { return !engine.GetProgress().running; }));
    EXPECT_EQ(engine.GetProgress().done, heldPath_.empty());
    EXPECT_EQ(engine.GetProgress().error,
              heldPath_.empty() ? L"" : L"The install folder could not be removed: " + Game());

    Snapshot after = TakeSnapshot();
    TakeOut(before_, Game());
    TakeOut(before_, DesktopShortcutPath());
    TakeOut(before_, StartMenuFolder());
    // Of a tree with a file that is held, only that one and the way to it may stay.
    for (const auto& [path, content] : TakeOut(after, Game())) {
        const std::wstring left = Game() + path;
        EXPECT_TRUE(heldPath_ == left || heldPath_.starts_with(left + L"\\")) << left;
    }
    EXPECT_EQ(FirstDifference(before_, after), "");
    EXPECT_EQ(GetInstallLocation(), L"");
    EXPECT_EQ(GetLanguage(), keep ? 2 : -1);
    EXPECT_EQ(GetLastInstallPath(), keep ? Game() : L"");
}

TEST_P(Departure, AMoveTakesTheTreeAndItsRecordsAlong) {
    const std::wstring targets[] = {
        area_ + L"\\new\\" + generator_.Name(),
        otherArea_ + L"\\" + generator_.Name(),
        Game() + L"\\deep\\" + generator_.Name(),
        area_ + L"\\outside",
    };
    const std::wstring& target = targets[generator_.Below(std::size(targets))];
    const bool stands = Platform::PathExists(target);
    if (generator_.OneIn(12)) HoldSomeFile();
    MoveResult result;
    const bool moved = MoveInstallation(Game(), target, {}, result);
    EXPECT_EQ(moved, heldPath_.empty() && !stands) << static_cast<unsigned>(result.code);

    Snapshot after = TakeSnapshot();
    if (!moved) {
        EXPECT_EQ(FirstDifference(before_, after), "");
        EXPECT_EQ(GetInstallLocation(), Game());
        return;
    }
    EXPECT_EQ(GetInstallLocation(), target);
    Snapshot game = TakeOut(before_, Game());
    Snapshot copy = TakeOut(after, target);
    // Of a copy the links are what they led to; and the folders on the way are new.
    if (!result.renamed) {
        std::erase_if(game, [](const auto& entry) { return entry.second.starts_with("link"); });
        std::erase_if(copy, [&](const auto& entry) { return !game.contains(entry.first); });
    }
    EXPECT_EQ(FirstDifference(game, copy), "");
    for (const std::wstring& made : {FolderOf(target), Game()}) {
        if (!before_.contains(made)) after.erase(made);
    }
    for (Snapshot* snapshot : {&before_, &after}) {
        TakeOut(*snapshot, DesktopShortcutPath());
        TakeOut(*snapshot, StartMenuFolder());
    }
    EXPECT_EQ(FirstDifference(before_, after), "");
}

INSTANTIATE_TEST_SUITE_P(Trees, Departure, testing::Range(0U, NumberFrom("TOLVAN_TREES", 30)));

}  // namespace
}  // namespace Launcher
