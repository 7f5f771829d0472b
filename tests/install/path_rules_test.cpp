#include "install/path_rules.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/paths.h"

namespace Launcher {
namespace {

TEST(NormalisePath, TurnsSeparatorsAndDropsDoubledAndTrailingOnes) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"", L""},
        {L"C:/Games//Tolvan", L"C:\\Games\\Tolvan"},
        {L"C:\\", L"C:\\"},
        {L"C:\\\\\\", L"C:\\"},
        {L"C:\\Games\\\\\\", L"C:\\Games"},
        {L"\\\\server\\\\share\\x\\", L"\\\\server\\share\\x"},
        {L"//server/share", L"\\\\server\\share"},
        {L"\\\\\\server", L"\\\\server"},
        {L"Tolvan Online", L"Tolvan Online"},
    };
    for (const auto& [text, normal] : cases)
        EXPECT_EQ(NormalisePath(text), normal) << text;
}

TEST(SafeFolder, AcceptsOnlyFullPathsBelowARootThatAreNotTheSystemsOwn) {
    using Platform::GetShellFolder;
    using Platform::ShellFolder;
    const std::wstring programFiles = GetShellFolder(ShellFolder::ProgramFilesX86);
    ASSERT_FALSE(programFiles.empty());
    const std::pair<std::wstring, bool> cases[] = {
        {L"", false},
        {L"Tolvan Online", false},
        {L".\\Tolvan Online", false},
        {L"C:", false},
        {L"C:\\", false},
        {L"C:\\\\", false},
        {L"C:/Games", false},
        {L"C:/Games\\x", true},
        {GetShellFolder(ShellFolder::Windows), false},
        {GetShellFolder(ShellFolder::Windows) + L"\\", false},
        {GetShellFolder(ShellFolder::System), false},
        {GetShellFolder(ShellFolder::Profile), false},
        {GetShellFolder(ShellFolder::AppData), false},
        {GetShellFolder(ShellFolder::DesktopDirectory), false},
        {programFiles, false},
        {programFiles + L"\\Tolvan Online", true},
        {L"c:\\PROGRAM FILES (X86)", false},
        {L"\\\\server", false},
        {L"\\\\server\\share", false},
        {L"\\\\server\\share\\", false},
        {L"\\\\server\\share\\Tolvan", true},
        {L"C:\\Tolvan Online", true},
        {L"D:\\Games\\Tolvan\\Online", true},
    };
    for (const auto& [path, safe] : cases)
        EXPECT_EQ(IsSafeFolder(path), safe) << path;
}

TEST(NeedsElevation, AsksTheNearestExistingFolderAndLeavesNothingThere) {
    const std::wstring folder = Platform::GetTempFolder() + L"elevation";
    ASSERT_TRUE(CreateFolderPath(folder));
    EXPECT_FALSE(NeedsElevation(folder + L"\\not\\there\\yet"));
    EXPECT_FALSE(NeedsElevation(L""));
    std::vector<Platform::FolderEntry> entries;
    ASSERT_EQ(Platform::ListFolder(folder, entries), Platform::Error::None);
    EXPECT_TRUE(entries.empty());

    // An elevated process may write there, and the page still warns.
    const std::wstring programFiles = Platform::GetEnvironmentText(L"ProgramFiles");
    EXPECT_TRUE(NeedsElevation(programFiles + L"\\Tolvan Online"));
    EXPECT_TRUE(IsProtectedLocation(programFiles + L" Extra"));
}

}  // namespace
}  // namespace Launcher
