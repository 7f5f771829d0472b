#include <algorithm>

#include "platform/disks.h"
#include "platform/files.h"
#include "platform/text.h"
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

TEST_F(Folders, Listing) {
    WriteText(At(L"five"), "12345");
    WriteText(At(L".hidden by name"), "");
    ASSERT_EQ(MakeFolder(At(L"Folder")), Error::None);
    std::vector<FolderEntry> entries(3);
    ASSERT_EQ(ListFolder(folder_, entries), Error::None);
    std::sort(entries.begin(), entries.end(),
              [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].name, L".hidden by name");
    EXPECT_EQ(entries[0].size, 0u);
    EXPECT_EQ(entries[1].name, L"Folder");
    EXPECT_TRUE(entries[1].IsFolder());
    EXPECT_FALSE(entries[1].IsReparsePoint());
    EXPECT_EQ(entries[2].name, L"five");
    EXPECT_FALSE(entries[2].IsFolder());
    EXPECT_EQ(entries[2].size, 5u);

    EXPECT_EQ(ListFolder(At(L"folder"), entries), Error::None);
    EXPECT_TRUE(entries.empty());
    EXPECT_EQ(ListFolder(At(L"gone"), entries), Error::PathNotFound);
    if (!TestSupport::WrongPlacesHaveOtherNumbers()) {
        EXPECT_EQ(ListFolder(At(L"five"), entries), Error::InvalidFolder);
    }
    EXPECT_EQ(ListFolder(L"C:\\", entries), Error::None);
    EXPECT_TRUE(std::any_of(entries.begin(), entries.end(), [](const FolderEntry& entry) {
        return EqualIgnoringCase(entry.name, L"Windows");
    }));
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
    const std::vector<std::wstring> drives = ListFixedDrives();
    EXPECT_EQ(std::count(drives.begin(), drives.end(), L"C:"), 1);
    EXPECT_TRUE(std::is_sorted(drives.begin(), drives.end()));
}

}  // namespace
}  // namespace Platform
