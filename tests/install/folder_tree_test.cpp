#include "install/folder_tree.h"

#include <gtest/gtest.h>

#include "install/path_rules.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "support/links.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using Platform::Error;
using namespace TestSupport;

class FolderTree : public testing::Test {
protected:
    void SetUp() override {
        root = Platform::GetTempFolder() + L"folder tree";
        ASSERT_TRUE(CreateFolderPath(root + L"\\a\\empty"));
        ASSERT_TRUE(CreateFolderPath(root + L"\\b"));
        WriteText(root + L"\\one.dat", std::string(10, 'x'));
        WriteText(root + L"\\a\\два.dat", std::string(20, 'x'));
        WriteText(root + L"\\a\\hidden.dat", std::string(30, 'x'));
        WriteText(root + L"\\b\\read only.dat", std::string(40, 'x'));
        ASSERT_EQ(Platform::ChangeAttributes(root + L"\\a\\hidden.dat",
                                             Platform::AttributeHidden | Platform::AttributeSystem),
                  Error::None);
        ASSERT_EQ(
            Platform::ChangeAttributes(root + L"\\b\\read only.dat", Platform::AttributeReadOnly),
            Error::None);
    }
    void TearDown() override { RemoveInstallFolder(root, nullptr); }

    std::wstring root;
};

TEST_F(FolderTree, LinksAreNeitherFollowedNorCounted) {
    const std::wstring outside = Platform::GetTempFolder() + L"outside the tree";
    ASSERT_TRUE(CreateFolderPath(outside + L"\\kept"));
    WriteText(outside + L"\\kept.dat", std::string(1000, 'x'));
    if (!MakeLink(root + L"\\a\\junction", outside)) {
        GTEST_SKIP() << "this machine makes no links";
    }
    ASSERT_TRUE(MakeLink(root + L"\\b\\around", root));
    ASSERT_TRUE(MakeLink(root + L"\\b\\file link.dat", outside + L"\\kept.dat"));
    ASSERT_TRUE(MakeLink(root + L"\\b\\dangling", outside + L"\\missing"));

    std::uint64_t bytes = 0;
    std::uint64_t files = 0;
    FolderStat(root, bytes, files);
    EXPECT_EQ(bytes, 100u);
    EXPECT_EQ(files, 4u);
    EXPECT_EQ(CountFiles(root, 100000), 4);
    EXPECT_EQ(CountFiles(root, 2), 2);
    // The write test goes where a write would go, and leaves nothing there.
    EXPECT_FALSE(NeedsElevation(root + L"\\a\\junction\\new"));
    EXPECT_EQ(CountFiles(outside, 10), 1);

    // A root that is a link goes as a link.
    const std::wstring rootLink = Platform::GetTempFolder() + L"link to the tree";
    ASSERT_TRUE(MakeLink(rootLink, root));
    EXPECT_TRUE(RemoveInstallFolder(rootLink, nullptr));
    EXPECT_FALSE(Platform::PathExists(rootLink));
    EXPECT_EQ(CountFiles(root, 100000), 4);

    EXPECT_TRUE(RemoveInstallFolder(root, nullptr));
    EXPECT_FALSE(Platform::PathExists(root));
    EXPECT_TRUE(RemoveInstallFolder(root, nullptr)) << "a folder that has gone already";
    EXPECT_TRUE(Platform::PathExists(outside + L"\\kept"));
    EXPECT_EQ(CountFiles(outside, 10), 1);
    EXPECT_TRUE(RemoveInstallFolder(outside, nullptr));
}

TEST_F(FolderTree, AnUnsafeFolderIsNotTouchedHoweverItIsWritten) {
    using Platform::GetShellFolder;
    using Platform::ShellFolder;
    const std::wstring profile = GetShellFolder(ShellFolder::Profile);
    const std::wstring own = Platform::OwnPath();
    const std::wstring unsafe[] = {
        L"C:\\",
        profile,
        profile + L"\\\\.\\",
        profile + L"\\Desktop\\..",
        profile + L" ",
        L"\\\\?\\" + profile,
        L"\\\\.\\C:\\",
        profile.substr(0, profile.rfind(L'\\')),
        L"C:\\Games\\..",
        L"C:\\..\\Games",
        own.substr(0, own.rfind(L'\\')),
    };
    for (const std::wstring& folder : unsafe) {
        EXPECT_TRUE(IsProtectedFromDeletion(folder)) << folder;
        EXPECT_FALSE(RemoveInstallFolder(folder, nullptr)) << folder;
    }
    EXPECT_EQ(CountFiles(root, 10), 4);
    EXPECT_FALSE(IsProtectedFromDeletion(root));
}

}  // namespace
}  // namespace Launcher
