#include "platform/files.h"
#include "support/scratch.h"
// Rules of Windows that Wine does not keep, at least for root.

namespace Platform {
namespace {

using TestSupport::ReadText;
using TestSupport::WriteText;

class WindowsRules : public TestSupport::Scratch {};

TEST_F(WindowsRules, HiddenAndSystemFilesAreNotEmptied) {
    WriteText(At(L"client.exe"), "client");
    WriteText(At(L"other.exe"), "other");
    for (const std::uint32_t attribute : {AttributeHidden, AttributeSystem}) {
        ASSERT_EQ(ChangeAttributes(At(L"client.exe"), attribute), Error::None);
        File file;
        EXPECT_EQ(file.Open(At(L"client.exe"),
                            {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
                  Error::AccessDenied);
        EXPECT_EQ(CopyFileTo(At(L"other.exe"), At(L"client.exe"), true), Error::AccessDenied);
        EXPECT_EQ(file.Open(At(L"client.exe"), {.access = AccessWrite}), Error::None);
        EXPECT_EQ(ReadText(At(L"client.exe")), "client");
    }
    EXPECT_EQ(MovePath(At(L"other.exe"), At(L"client.exe"), {.replaceExisting = true}),
              Error::None);
}

TEST_F(WindowsRules, AReadOnlyFolderStaysButTakesFiles) {
    ASSERT_EQ(MakeFolder(At(L"folder")), Error::None);
    ASSERT_EQ(ChangeAttributes(At(L"folder"), AttributeReadOnly), Error::None);
    WriteText(At(L"folder\\file"), "");
    EXPECT_EQ(RemoveFile(At(L"folder\\file")), Error::None);
    EXPECT_EQ(RemoveEmptyFolder(At(L"folder")), Error::AccessDenied);
    ASSERT_EQ(ChangeAttributes(At(L"folder"), AttributeNormal), Error::None);
    EXPECT_EQ(RemoveEmptyFolder(At(L"folder")), Error::None);
}

TEST_F(WindowsRules, AFolderWithOpenFilesIsNotRenamed) {
    ASSERT_EQ(MakeFolderPath(At(L"game\\Data\\maps")), Error::None);
    WriteText(At(L"game\\Data\\maps\\one.map"), "map");
    File file;
    ASSERT_EQ(file.Open(At(L"game\\Data\\maps\\one.map"), {}), Error::None);
    EXPECT_EQ(MovePath(At(L"game"), At(L"moved"), {}), Error::AccessDenied);
    EXPECT_EQ(MovePath(At(L"game\\Data"), At(L"moved"), {}), Error::AccessDenied);
    ASSERT_EQ(file.Open(At(L"game\\Data\\maps"), {.folder = true}), Error::None);
    EXPECT_EQ(MovePath(At(L"game"), At(L"moved"), {}), Error::AccessDenied);
    file.Close();
    EXPECT_EQ(MovePath(At(L"game"), At(L"moved"), {}), Error::None);
}

TEST_F(WindowsRules, LongPathsNeedThePrefix) {
    std::wstring path = folder_;
    while (path.size() < 200)
        path += L"\\twenty characters..x";
    ASSERT_EQ(MakeFolderPath(path), Error::None);
    const std::wstring fits = path + L'\\' + std::wstring(259 - path.size() - 1, L'f');
    const std::wstring isLong = fits + L'f';
    ASSERT_EQ(fits.size(), 259u);
    File file;
    const OpenOptions create{.access = AccessWrite, .disposition = Disposition::CreateAlways};
    EXPECT_EQ(file.Open(fits, create), Error::None);
    EXPECT_EQ(file.Open(isLong, create), Error::PathNotFound);
    EXPECT_EQ(MakeFolder(fits + L"\\x"), Error::PathNotFound);
    EXPECT_EQ(MakeFolder(path + L'\\' + std::wstring(248 - path.size() - 1, L'f')),
              Error::NameTooLong);
    EXPECT_EQ(file.Open(L"\\\\?\\" + isLong, create), Error::None);
    file.Close();
    FileInfo info;
    EXPECT_EQ(GetFileInfo(L"\\\\?\\" + isLong, info), Error::None);
    EXPECT_EQ(RemoveFile(L"\\\\?\\" + isLong), Error::None);
}

TEST_F(WindowsRules, DevicesMakeNoFiles) {
    for (const wchar_t* name : {L"nul", L"CON", L"aux.txt", L"Com1", L"lpt9.x.y", L"prn .txt"}) {
        File file;
        EXPECT_EQ(
            file.Open(At(name), {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
            Error::InvalidName);
        EXPECT_EQ(MakeFolder(At(name)), Error::InvalidName);
    }
    for (const wchar_t* name : {L"null", L"com0", L"comx", L"auxiliary.txt", L"console"}) {
        WriteText(At(name), "");
        EXPECT_TRUE(PathExists(At(name)));
    }
}

}  // namespace
}  // namespace Platform
