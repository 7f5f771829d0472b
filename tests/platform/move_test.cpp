#include "platform/files.h"
#include "platform/text.h"
#include "support/scratch.h"
#include "support/wine.h"

namespace Platform {
namespace {

using TestSupport::ReadText;
using TestSupport::WriteText;

class Moving : public TestSupport::Scratch {};

TEST_F(Moving, RulesOfTheTarget) {
    ASSERT_EQ(MakeFolder(At(L"folder")), Error::None);
    ASSERT_EQ(MakeFolder(At(L"other")), Error::None);
    const MoveOptions keep;
    const MoveOptions replace{.replaceExisting = true, .writeThrough = true};
    const struct {
        const wchar_t* from;
        const wchar_t* to;
        MoveOptions options;
        Error expected;
    } cases[] = {
        {L"gone", L"new", keep, Error::FileNotFound},
        {L"gone\\gone", L"new", keep, Error::PathNotFound},
        {L"file", L"gone\\new", keep, Error::PathNotFound},
        {L"file", L"target", keep, Error::AlreadyExists},
        {L"file", L"TARGET", keep, Error::AlreadyExists},
        {L"file", L"folder", keep, Error::AlreadyExists},
        {L"file", L"folder", replace, Error::AccessDenied},
        {L"folder", L"other", keep, Error::AlreadyExists},
        {L"folder", L"other", replace, Error::AccessDenied},
        {L"folder", L"target", keep, Error::AlreadyExists},
        {L"folder", L"target", replace, Error::AccessDenied},
        {L"file", L"a*b", keep, Error::InvalidName},
        {L"file", L"new", keep, Error::None},
        {L"file", L"target", replace, Error::None},
        {L"FILE", L"Target", replace, Error::None},
        {L"folder", L"renamed", keep, Error::None},
    };
    for (const auto& each : cases) {
        const bool folderOnFile = each.from == std::wstring(L"folder") &&
                                  each.to == std::wstring(L"target") &&
                                  each.options.replaceExisting;
        if (folderOnFile && TestSupport::FolderReplacesFile()) continue;
        WriteText(At(L"file"), "file");
        WriteText(At(L"target"), "target");
        EXPECT_EQ(MovePath(At(each.from), At(each.to), each.options), each.expected)
            << Utf8FromWide(each.from) << " to " << Utf8FromWide(each.to);
        EXPECT_EQ(ReadText(At(L"target")),
                  Succeeded(each.expected) && each.options.replaceExisting ? "file" : "target");
    }
    EXPECT_TRUE(IsExistingFolder(At(L"renamed")));
    EXPECT_FALSE(PathExists(At(L"folder")));
}

TEST_F(Moving, OnlyTheCaseChanges) {
    WriteText(At(L"readme.txt"), "text");
    ASSERT_EQ(MovePath(At(L"readme.txt"), At(L"ReadMe.TXT"), {}), Error::None);
    std::vector<FolderEntry> entries;
    ASSERT_EQ(ListFolder(folder_, entries), Error::None);
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, TestSupport::RenameKeepsCase() ? L"readme.txt" : L"ReadMe.TXT");
    EXPECT_EQ(MovePath(At(L"ReadMe.TXT"), At(L"ReadMe.TXT"), {}), Error::None);
    EXPECT_EQ(ReadText(At(L"readme.txt")), "text");
}

TEST_F(Moving, AnotherDriveIsAnotherDevice) {
    WriteText(At(L"file"), "text");
    ASSERT_EQ(MakeFolder(At(L"folder")), Error::None);
    EXPECT_EQ(MovePath(At(L"file"), L"D:\\file", {}), Error::NotSameDevice);
    EXPECT_EQ(MovePath(At(L"folder"), L"D:\\folder", {}), Error::NotSameDevice);
    EXPECT_EQ(MovePath(At(L"folder"), L"D:\\folder", {.copyAllowed = true}), Error::AccessDenied);
    EXPECT_EQ(MovePath(At(L"gone"), L"D:\\file", {}), Error::FileNotFound);
    EXPECT_EQ(MovePath(At(L"file"), L"D:\\file", {.copyAllowed = true}), Error::None);
    EXPECT_EQ(ReadText(L"D:\\file"), "text");
    EXPECT_FALSE(PathExists(At(L"file")));
    EXPECT_EQ(RemoveFile(L"D:\\file"), Error::None);
}

TEST_F(Moving, AFileMayNotBeRemovedAsTheWrongKind) {
    WriteText(At(L"file"), "");
    ASSERT_EQ(MakeFolderPath(At(L"folder\\inner")), Error::None);
    EXPECT_EQ(RemoveFile(At(L"folder")), Error::AccessDenied);
    EXPECT_EQ(RemoveFile(At(L"gone")), Error::FileNotFound);
    EXPECT_EQ(RemoveFile(At(L"gone\\gone")), Error::PathNotFound);
    EXPECT_EQ(RemoveEmptyFolder(At(L"file")), Error::InvalidFolder);
    EXPECT_EQ(RemoveEmptyFolder(At(L"gone")), Error::FileNotFound);
    EXPECT_EQ(RemoveEmptyFolder(At(L"folder")), Error::FolderNotEmpty);
    EXPECT_EQ(RemoveEmptyFolder(At(L"folder\\inner")), Error::None);
    EXPECT_EQ(RemoveEmptyFolder(At(L"Folder")), Error::None);
    EXPECT_EQ(RemoveFile(At(L"FILE")), Error::None);
    EXPECT_FALSE(PathExists(At(L"file")));
}

}  // namespace
}  // namespace Platform
