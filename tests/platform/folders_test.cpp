#include "platform/disks.h"
#include "platform/files.h"
#include "support/scratch.h"
#include "support/wine.h"

namespace Platform {
namespace {

using TestSupport::WriteText;

class Folders : public TestSupport::Scratch {};

TEST_F(Folders, Making) {
    WriteText(At(L"file"), "");
    EXPECT_EQ(MakeFolder(At(L"one")), Error::None);
    EXPECT_EQ(MakeFolder(At(L"ONE")), Error::AlreadyExists);
    EXPECT_EQ(MakeFolder(At(L"file")), Error::AlreadyExists);
    EXPECT_EQ(MakeFolder(At(L"gone\\two")), Error::PathNotFound);
    EXPECT_EQ(MakeFolder(At(L"a<b")), Error::InvalidName);
    EXPECT_EQ(MakeFolderPath(At(L"One/two\\three\\")), Error::None);
    EXPECT_EQ(MakeFolderPath(At(L"one\\two\\three")), Error::AlreadyExists);
    EXPECT_TRUE(IsExistingFolder(At(L"one\\two\\three")));
    EXPECT_FALSE(Succeeded(MakeFolderPath(At(L"file\\two"))));
    EXPECT_EQ(MakeFolder(At(L"trailing. . ")), Error::None);
    EXPECT_TRUE(IsExistingFolder(At(L"trailing")));
}

TEST_F(Folders, ListingNeedsAFolder) {
    WriteText(At(L"file"), "");
    std::vector<FolderEntry> entries(3);
    EXPECT_EQ(ListFolder(At(L"gone"), entries), Error::PathNotFound);
    if (!TestSupport::ListingAFileHasAnotherNumber()) {
        EXPECT_EQ(ListFolder(At(L"file"), entries), Error::InvalidFolder);
    }
    ASSERT_EQ(MakeFolder(At(L"empty")), Error::None);
    EXPECT_EQ(ListFolder(At(L"EMPTY"), entries), Error::None);
    EXPECT_TRUE(entries.empty());
}

TEST_F(Folders, AHeldFolderStays) {
    ASSERT_EQ(MakeFolder(At(L"held")), Error::None);
    File held;
    ASSERT_EQ(held.Open(At(L"held"), {.sharing = ShareRead | ShareWrite, .folder = true}),
              Error::None);
    EXPECT_EQ(RemoveEmptyFolder(At(L"held")), Error::SharingViolation);
    EXPECT_EQ(MovePath(At(L"held"), At(L"moved"), {}), Error::SharingViolation);
    WriteText(At(L"held\\inside"), "");
    EXPECT_EQ(RemoveFile(At(L"held\\inside")), Error::None);
    held.Close();
    EXPECT_EQ(MovePath(At(L"held"), At(L"moved"), {}), Error::None);
}

TEST_F(Folders, DiskSpace) {
    DiskSpace space;
    ASSERT_EQ(GetDiskSpace(L"C:\\", space), Error::None);
    EXPECT_GT(space.freeBytes, 0u);
    EXPECT_GE(space.totalBytes, space.freeBytes);
    EXPECT_FALSE(Succeeded(GetDiskSpace(L"Q:\\", space)));
}

}  // namespace
}  // namespace Platform
