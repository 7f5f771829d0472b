#include "platform/paths.h"

#include "platform/files.h"
#include "platform/text.h"
#include "support/scratch.h"

namespace Platform {
namespace {

using TestSupport::ReadText;
using TestSupport::WriteText;

TEST(Paths, ShellFoldersExist) {
    const ShellFolder folders[] = {
        ShellFolder::Windows,      ShellFolder::System,           ShellFolder::SystemX86,
        ShellFolder::ProgramFiles, ShellFolder::ProgramFilesX86,  ShellFolder::ProgramFilesCommon,
        ShellFolder::Profile,      ShellFolder::DesktopDirectory, ShellFolder::Personal,
        ShellFolder::AppData,      ShellFolder::LocalAppData,     ShellFolder::CommonAppData,
        ShellFolder::Programs,
    };
    for (const ShellFolder folder : folders) {
        const std::wstring path = GetShellFolder(folder);
        EXPECT_TRUE(IsExistingFolder(path)) << static_cast<int>(folder) << Utf8FromWide(path);
        EXPECT_NE(path.back(), L'\\');
    }
    EXPECT_TRUE(IsExistingFolder(GetSystemFolder()));
    EXPECT_TRUE(IsExistingFolder(GetTempFolder()));
    EXPECT_EQ(GetTempFolder().back(), L'\\');
}

class CurrentFolder : public TestSupport::Scratch {};

TEST_F(CurrentFolder, IsWhereRelativePathsCountFrom) {
    ASSERT_EQ(MakeFolderPath(At(L"here\\below")), Error::None);
    WriteText(At(L"here\\file.txt"), "here");
    WriteText(At(L"file.txt"), "above");
    ASSERT_EQ(ChangeCurrentFolder(At(L"here")), Error::None);
    EXPECT_EQ(ReadText(L"file.txt"), "here");
    EXPECT_EQ(ReadText(L"BELOW/..\\file.txt"), "here");
    EXPECT_EQ(ReadText(L"..\\file.txt"), "above");
    const std::wstring withoutDrive = At(L"file.txt").substr(2);
    EXPECT_EQ(ReadText(withoutDrive), "above");
    EXPECT_EQ(ReadText(At(L"here").substr(0, 2) + L"file.txt"), "here");
    EXPECT_EQ(ReadText(L"\\\\?\\" + At(L"here\\file.txt")), "here");
    // The process holds its current folder.
    EXPECT_EQ(MovePath(At(L"here"), At(L"there"), {}), Error::SharingViolation);
    EXPECT_FALSE(Succeeded(ChangeCurrentFolder(At(L"gone"))));
    EXPECT_FALSE(Succeeded(ChangeCurrentFolder(At(L"file.txt"))));
    EXPECT_EQ(ReadText(L"file.txt"), "here");
    ASSERT_EQ(ChangeCurrentFolder(L"C:\\"), Error::None);
    EXPECT_EQ(MovePath(At(L"here"), At(L"there"), {}), Error::None);
}

}  // namespace
}  // namespace Platform
