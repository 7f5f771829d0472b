#include "patch/file_placement.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using namespace TestSupport;
using Files = std::map<std::wstring, std::string>;

class FilePlacementTest : public testing::Test {
protected:
    FilePlacementTest() {
        Write(L"file", "old");
        Write(L"file.part", "new");
    }

    std::wstring Path(const std::wstring& name) const { return folder_ + name; }
    void Write(const std::wstring& name, const char* text) const {
        const std::wstring path = Path(name);
        (void)Platform::MakeFolderPath(path.substr(0, path.rfind(L'\\')));
        WriteText(path, text);
    }
    Files Tree() const { return ReadTree(folder_.substr(0, folder_.size() - 1)); }

    /// Renames of the part fail so many times; all others are done.
    bool Put(bool replaceExisting, int failures) {
        const auto rename = [&](const std::wstring& from, const std::wstring& to) {
            if (from.ends_with(L".part") && failures-- > 0) return false;
            return RenameOnDisk(from, to);
        };
        return PutInPlace(Path(L"file.part"), Path(L"file"), replaceExisting, oldCopies_, rename);
    }

    const std::wstring folder_ = MakeTestFolder() + L"\\";
    OldCopies oldCopies_{folder_};
};

TEST_F(FilePlacementTest, MovesAFileInUseAside) {
    EXPECT_TRUE(Put(true, 1));
    EXPECT_EQ(Tree(), (Files{{L"file", "new"}, {L"old0", "old"}}));
}

TEST_F(FilePlacementTest, MovesTheOldFileBackWhenTheNewOneCannotCome) {
    EXPECT_FALSE(Put(true, 2));
    EXPECT_EQ(Tree(), (Files{{L"file", "old"}, {L"file.part", "new"}}));
}

TEST_F(FilePlacementTest, MovesNothingAsideThatWasNotThereBefore) {
    EXPECT_FALSE(Put(false, 1));
    EXPECT_EQ(Tree(), (Files{{L"file", "old"}, {L"file.part", "new"}}));
}

TEST_F(FilePlacementTest, NumbersThatAreTakenAreSkipped) {
    for (const wchar_t* name : {L"old0", L"old1", L"old3"})
        Write(name, "held");
    EXPECT_EQ(oldCopies_.MoveAside(Path(L"file")), Path(L"old2"));
    EXPECT_EQ(oldCopies_.MoveAside(Path(L"file.part")), Path(L"old4"));
    EXPECT_EQ(oldCopies_.MoveAside(Path(L"missing")), L"");
}

TEST_F(FilePlacementTest, AKillBetweenTheTwoMovesLosesNothing) {
    Write(L"Data\\\u0416 folder\\file", "old");
    ASSERT_NE(oldCopies_.MoveAside(Path(L"Data\\\u0416 folder\\file")), L"");
    ASSERT_NE(oldCopies_.MoveAside(Path(L"file")), L"");
    Write(L"file", "new");  // this one came to its end but for its record

    OldCopies(folder_).CleanUp();
    EXPECT_EQ(Tree(), (Files{{L"Data", "a folder"},
                             {L"Data\\\u0416 folder", "a folder"},
                             {L"Data\\\u0416 folder\\file", "old"},
                             {L"file", "new"}}));
}

TEST_F(FilePlacementTest, CleanUpDeletesOldCopiesInTheTopFolderOnly) {
    for (const wchar_t* name : {L"old0", L"OLD17", L"older.txt", L"Data\\old0", L"bold",
                                L"old folder\\inside", L"old in use"})
        Write(name, "x");
    ASSERT_EQ(Platform::ChangeAttributes(Path(L"old0"), Platform::AttributeReadOnly),
              Platform::Error::None);
    Platform::File open;
    ASSERT_EQ(open.Open(Path(L"old in use"), {.sharing = Platform::ShareRead}),
              Platform::Error::None);
    oldCopies_.CleanUp();
    EXPECT_EQ(Tree(), (Files{{L"Data", "a folder"},
                             {L"Data\\old0", "x"},
                             {L"bold", "x"},
                             {L"file", "old"},
                             {L"file.part", "new"},
                             {L"old folder", "a folder"},
                             {L"old folder\\inside", "x"},
                             {L"old in use", "x"}}));
}

TEST_F(FilePlacementTest, ARecordLeadsNowhereOutsideTheFolder) {
    const std::wstring inner = Path(L"inner\\");
    for (const char* path : {"..\\evil", "Data/../../evil", "C:\\evil", "", "NUL"}) {
        Write(L"inner\\old7", "evil");
        Write(L"inner\\old7.from", path);
        OldCopies(inner).CleanUp();
        EXPECT_EQ(Tree(), (Files{{L"file", "old"}, {L"file.part", "new"}, {L"inner", "a folder"}}))
            << path;
    }
}

}  // namespace
}  // namespace Launcher
