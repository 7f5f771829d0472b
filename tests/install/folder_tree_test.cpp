#include "install/folder_tree.h"

#include <array>
#include <gtest/gtest.h>

#include "install/path_rules.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "support/links.h"

namespace Launcher {
namespace {

using Platform::Error;

class FolderTree : public testing::Test {
protected:
    void SetUp() override {
        root = Platform::GetTempFolder() + L"folder tree";
        ASSERT_TRUE(CreateFolderPath(root + L"\\a\\empty"));
        ASSERT_TRUE(CreateFolderPath(root + L"\\b"));
        Put(L"\\one.dat", 10);
        Put(L"\\a\\два.dat", 20);
        Put(L"\\a\\hidden.dat", 30);
        Put(L"\\b\\read only.dat", 40);
        ASSERT_EQ(Platform::ChangeAttributes(root + L"\\a\\hidden.dat",
                                             Platform::AttributeHidden | Platform::AttributeSystem),
                  Error::None);
        ASSERT_EQ(
            Platform::ChangeAttributes(root + L"\\b\\read only.dat", Platform::AttributeReadOnly),
            Error::None);
    }
    void TearDown() override { RemoveInstallFolder(root, nullptr); }

    void Put(const std::wstring& name, std::size_t size) const {
        Platform::File file;
        ASSERT_EQ(file.Open(root + name, {.access = Platform::AccessWrite,
                                          .disposition = Platform::Disposition::CreateAlways}),
                  Error::None);
        ASSERT_EQ(file.Write(std::vector<std::byte>(size)), Error::None);
    }

    std::wstring root;
};

TEST_F(FolderTree, LinksAreNeitherFollowedNorCounted) {
    const std::wstring outside = Platform::GetTempFolder() + L"outside the tree";
    ASSERT_TRUE(CreateFolderPath(outside + L"\\kept"));
    Platform::File file;
    ASSERT_EQ(
        file.Open(outside + L"\\kept.dat", {.access = Platform::AccessWrite,
                                            .disposition = Platform::Disposition::CreateAlways}),
        Error::None);
    ASSERT_EQ(file.Write(std::vector<std::byte>(1000)), Error::None);
    file.Close();
    if (!TestSupport::MakeLink(root + L"\\a\\junction", outside)) {
        GTEST_SKIP() << "this machine makes no links";
    }
    ASSERT_TRUE(TestSupport::MakeLink(root + L"\\b\\around", root));
    ASSERT_TRUE(TestSupport::MakeLink(root + L"\\b\\file link.dat", outside + L"\\kept.dat"));
    ASSERT_TRUE(TestSupport::MakeLink(root + L"\\b\\dangling", outside + L"\\missing"));

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
    ASSERT_TRUE(TestSupport::MakeLink(rootLink, root));
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
