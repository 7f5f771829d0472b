#include "patch/file_placement.h"

#include <gtest/gtest.h>

#include "platform/files.h"
#include "support/test_folder.h"

namespace Launcher {
namespace {

using Files = std::map<std::wstring, std::string>;

class FilePlacementTest : public testing::Test {
protected:
    FilePlacementTest() {
        folder_.Write(L"file", "old");
        folder_.Write(L"file.part", "new");
    }

    /// Renames of the part fail so many times; all others are done.
    bool Put(bool replaceExisting, int failures) {
        const auto rename = [&](const std::wstring& from, const std::wstring& to) {
            if (from.ends_with(L".part") && failures-- > 0) return false;
            return RenameOnDisk(from, to);
        };
        return PutInPlace(folder_.Path(L"file.part"), folder_.Path(L"file"), replaceExisting,
                          oldCopies_, rename);
    }

    TestFolder folder_;
    OldCopies oldCopies_{folder_.Path()};
};

TEST_F(FilePlacementTest, ReplacesInOneStepWhereItCan) {
    EXPECT_TRUE(Put(true, 0));
    EXPECT_EQ(folder_.Files(), (Files{{L"file", "new"}}));
}

TEST_F(FilePlacementTest, MovesAFileInUseAside) {
    EXPECT_TRUE(Put(true, 1));
    EXPECT_EQ(folder_.Files(), (Files{{L"file", "new"}, {L"old0", "old"}}));
}

TEST_F(FilePlacementTest, MovesTheOldFileBackWhenTheNewOneCannotCome) {
    EXPECT_FALSE(Put(true, 2));
    EXPECT_EQ(folder_.Files(), (Files{{L"file", "old"}, {L"file.part", "new"}}));
}

TEST_F(FilePlacementTest, MovesNothingAsideThatWasNotThereBefore) {
    EXPECT_FALSE(Put(false, 1));
    EXPECT_EQ(folder_.Files(), (Files{{L"file", "old"}, {L"file.part", "new"}}));
}

TEST_F(FilePlacementTest, NumbersThatAreTakenAreSkipped) {
    for (const wchar_t* name : {L"old0", L"old1", L"old3"})
        folder_.Write(name, "held");
    EXPECT_EQ(oldCopies_.MoveAside(folder_.Path(L"file")), folder_.Path(L"old2"));
    EXPECT_EQ(oldCopies_.MoveAside(folder_.Path(L"file.part")), folder_.Path(L"old4"));
    EXPECT_EQ(oldCopies_.MoveAside(folder_.Path(L"missing")), L"");
}

TEST_F(FilePlacementTest, AKillBetweenTheTwoMovesLosesNothing) {
    folder_.Write(L"Data\\\u0416 folder\\file", "old");
    ASSERT_NE(oldCopies_.MoveAside(folder_.Path(L"Data\\\u0416 folder\\file")), L"");
    ASSERT_NE(oldCopies_.MoveAside(folder_.Path(L"file")), L"");
    folder_.Write(L"file", "new");  // this one came to its end but for its record

    OldCopies(folder_.Path()).CleanUp();
    EXPECT_EQ(
        folder_.Files(),
        (Files{{L"Data\\\u0416 folder\\file", "old"}, {L"file", "new"}, {L"file.part", "new"}}));
}

TEST_F(FilePlacementTest, ARecordLeadsNowhereOutsideTheFolder) {
    const std::wstring inner = folder_.Path(L"inner\\");
    for (const char* path : {"..\\evil", "Data/../../evil", "C:\\evil", "", "NUL"}) {
        folder_.Write(L"inner\\old7", "evil");
        folder_.Write(L"inner\\old7.from", path);
        OldCopies(inner).CleanUp();
        EXPECT_EQ(folder_.Files(), (Files{{L"file", "old"}, {L"file.part", "new"}})) << path;
    }
}

}  // namespace
}  // namespace Launcher
