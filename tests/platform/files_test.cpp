#include "platform/files.h"

#include "platform/text.h"
#include "support/scratch.h"
#include "support/wine.h"

namespace Platform {
namespace {

using TestSupport::ReadText;
using TestSupport::WriteText;

class Files : public TestSupport::Scratch {};

TEST_F(Files, DispositionsAndWhatStandsThere) {
    WriteText(At(L"file.txt"), "old");
    ASSERT_EQ(MakeFolder(At(L"folder")), Error::None);
    constexpr auto Existing = Disposition::OpenExisting;
    constexpr auto New = Disposition::CreateNew;
    constexpr auto Always = Disposition::CreateAlways;
    const struct {
        const wchar_t* name;
        unsigned access;
        Disposition disposition;
        Error expected;
    } cases[] = {
        {L"file.txt", AccessRead, Existing, Error::None},
        {L"FILE.TXT", AccessRead, Existing, Error::None},
        {L"folder/../file.txt", AccessRead, Existing, Error::None},
        {L".\\\\file.txt", AccessRead, Existing, Error::None},
        {L"file.txt. .", AccessRead, Existing, Error::None},
        {L"file.txt", AccessWrite, New, Error::FileExists},
        {L"File.txt", AccessWrite, New, Error::FileExists},
        {L"gone.txt", AccessRead, Existing, Error::FileNotFound},
        {L"gone\\file.txt", AccessRead, Existing, Error::PathNotFound},
        {L"gone\\file.txt", AccessWrite, Always, Error::PathNotFound},
        {L"file.txt\\below.txt", AccessWrite, Always, Error::PathNotFound},
        {L"folder", AccessRead, Existing, Error::AccessDenied},
        {L"folder", AccessWrite, Existing, Error::AccessDenied},
        {L"folder", AccessWrite, Always, Error::AccessDenied},
        {L"a<b.txt", AccessWrite, Always, Error::InvalidName},
        {L"a?.txt", AccessRead, Existing, Error::InvalidName},
        {L"a|b", AccessWrite, New, Error::InvalidName},
        {L"\"quoted\"", AccessWrite, New, Error::InvalidName},
        {L"new.txt", AccessWrite, New, Error::None},
        {L"newer.txt", AccessWrite, Always, Error::None},
    };
    for (const auto& each : cases) {
        File file;
        EXPECT_EQ(
            file.Open(At(each.name), {.access = each.access, .disposition = each.disposition}),
            each.expected)
            << Utf8FromWide(each.name);
        EXPECT_EQ(file.IsOpen(), Succeeded(each.expected));
    }
    EXPECT_EQ(ReadText(At(L"file.txt")), "old");
    File emptied;
    EXPECT_EQ(emptied.Open(At(L"FILE.txt"),
                           {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
              Error::None);
    EXPECT_EQ(ReadText(At(L"file.txt")), "");
}

TEST_F(Files, Attributes) {
    const std::wstring path = At(L"client.exe");
    WriteText(path, "client");
    constexpr std::uint32_t hidden = AttributeHidden | AttributeSystem;
    constexpr std::uint32_t asked = hidden | AttributeReadOnly;
    const auto attributesNow = [&] {
        FileInfo info;
        EXPECT_EQ(GetFileInfo(path, info), Error::None);
        EXPECT_EQ(info.size, 6u);
        EXPECT_FALSE(info.IsFolder());
        return info.attributes & asked;
    };
    EXPECT_EQ(attributesNow(), 0u);

    ASSERT_EQ(ChangeAttributes(path, hidden | AttributeNotContentIndexed), Error::None);
    EXPECT_EQ(attributesNow(), hidden);
    EXPECT_EQ(ReadText(path), "client");
    ASSERT_EQ(MovePath(path, At(L"moved.exe"), {}), Error::None);
    ASSERT_EQ(MovePath(At(L"moved.exe"), path, {}), Error::None);
    EXPECT_EQ(attributesNow(), hidden);
    ASSERT_EQ(CopyFileTo(path, At(L"copy.exe"), false), Error::None);
    FileInfo copy;
    EXPECT_EQ(GetFileInfo(At(L"copy.exe"), copy), Error::None);
    EXPECT_EQ(copy.attributes & asked, hidden);

    ASSERT_EQ(ChangeAttributes(path, AttributeReadOnly), Error::None);
    EXPECT_EQ(attributesNow(), TestSupport::ReadOnlyIsHalfKept() ? asked : AttributeReadOnly);
    File file;
    EXPECT_EQ(file.Open(path, {.access = AccessWrite}), Error::AccessDenied);
    EXPECT_EQ(file.Open(path, {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
              Error::AccessDenied);
    EXPECT_EQ(RemoveFile(path), Error::AccessDenied);
    if (!TestSupport::ReadOnlyIsHalfKept()) {
        EXPECT_EQ(file.Open(path, {.sharing = ShareAll, .deleteOnClose = true}),
                  Error::AccessDenied);
        EXPECT_EQ(MovePath(At(L"copy.exe"), path, {.replaceExisting = true}), Error::AccessDenied);
        EXPECT_EQ(CopyFileTo(At(L"copy.exe"), path, true), Error::AccessDenied);
    }
    EXPECT_EQ(ReadText(path), "client");

    ASSERT_EQ(ChangeAttributes(path, AttributeNormal), Error::None);
    EXPECT_EQ(attributesNow(), 0u);
    EXPECT_EQ(RemoveFile(path), Error::None);
    EXPECT_EQ(ChangeAttributes(path, AttributeNormal), Error::FileNotFound);
}

TEST_F(Files, DeleteOnClose) {
    const std::wstring path = At(L"probe.tmp");
    File file;
    const OpenOptions options{.access = AccessWrite,
                              .sharing = ShareNone,
                              .disposition = Disposition::CreateAlways,
                              .deleteOnClose = true};
    for (const bool stoodBefore : {false, true}) {
        if (stoodBefore) WriteText(path, "stood before");
        ASSERT_EQ(file.Open(path, options), Error::None);
        EXPECT_TRUE(PathExists(path));
        file.Close();
        std::vector<FolderEntry> entries;
        EXPECT_EQ(ListFolder(folder_, entries), Error::None);
        EXPECT_TRUE(entries.empty());
    }
}

TEST_F(Files, FinalPathIsTheSameHoweverItIsWritten) {
    ASSERT_EQ(MakeFolder(At(L"Ordner")), Error::None);
    WriteText(At(L"Ordner\\файл"), "");
    for (const wchar_t* way : {L"Ordner\\файл", L"ordner/ФАЙЛ", L".\\Ordner\\..\\Ordner\\\\файл"}) {
        std::wstring path;
        EXPECT_EQ(GetFinalPath(At(way), path), Error::None);
        EXPECT_TRUE(EqualIgnoringCase(path, At(L"Ordner\\файл"))) << Utf8FromWide(path);
    }
    std::wstring path;
    EXPECT_EQ(GetFinalPath(At(L"Ordner\\"), path), Error::None);
    EXPECT_TRUE(EqualIgnoringCase(path, At(L"Ordner"))) << Utf8FromWide(path);
    EXPECT_EQ(GetFinalPath(At(L"gone"), path), Error::FileNotFound);
}

TEST_F(Files, Copies) {
    WriteText(At(L"from.txt"), "from");
    WriteText(At(L"to.txt"), "something longer");
    EXPECT_EQ(CopyFileTo(At(L"from.txt"), At(L"to.txt"), false), Error::FileExists);
    EXPECT_EQ(ReadText(At(L"to.txt")), "something longer");
    EXPECT_EQ(CopyFileTo(At(L"from.txt"), At(L"to.txt"), true), Error::None);
    EXPECT_EQ(ReadText(At(L"to.txt")), "from");
    EXPECT_EQ(CopyFileTo(At(L"from.txt"), At(L"FROM.txt"), true), Error::SharingViolation);
    EXPECT_EQ(ReadText(At(L"from.txt")), "from");
    EXPECT_EQ(CopyFileTo(At(L"gone"), At(L"to.txt"), true), Error::FileNotFound);
    EXPECT_EQ(CopyFileTo(At(L"from.txt"), At(L"gone\\to.txt"), true), Error::PathNotFound);
    EXPECT_EQ(CopyFileTo(At(L"from.txt"), folder_, true), Error::AccessDenied);
}

}  // namespace
}  // namespace Platform
