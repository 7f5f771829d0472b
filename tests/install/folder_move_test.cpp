#include "install/folder_move.h"

#include <gtest/gtest.h>

#include "common/path_text.h"
#include "install/folder_tree.h"
#include "install/path_rules.h"
#include "install/tree_copy.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/processes.h"
#include "platform/text.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using Platform::Error;
using namespace TestSupport;

class FolderMove : public testing::Test {
protected:
    FolderMove() {
        EXPECT_TRUE(CreateFolderPath(game_ + L"\\Data\\empty"));
        for (const wchar_t* name :
             {L"\\.Tolvan Online.exe", L"\\Data\\a.dat", L"\\Data\\длинное имя.dat"})
            WriteText(game_ + name, "content of " + Platform::Utf8FromWide(name));
        whole_ = ReadTree(game_);
    }
    ~FolderMove() override { RemoveInstallFolder(other_, nullptr); }

    bool Move(const std::wstring& destination) {
        MoveHooks hooks;
        hooks.onStanding = [&] { ++stood_; };
        hooks.isCancelled = [&] { return cancelled_; };
        return MoveInstallFolder(game_, destination, hooks, result_);
    }
    void ExpectNothingHappened(MoveCode code) const {
        EXPECT_EQ(ReadTree(game_), whole_);
        EXPECT_EQ(ReadTree(root_).size(), whole_.size() + 1) << "something stands beside it";
        EXPECT_EQ(result_.code, code);
        EXPECT_EQ(stood_, 0);
    }

    const std::wstring root_ = MakeTestFolder();
    const std::wstring game_ = root_ + L"\\Tolvan Online";
    /// On the other drive.
    const std::wstring other_ = L"D:\\Move test " + FileNameOf(root_);
    std::map<std::wstring, std::string> whole_;
    MoveResult result_;
    int stood_ = 0;
    bool cancelled_ = false;
};

TEST_F(FolderMove, TakesAnEmptyFolderAndNoOther) {
    const std::wstring target = root_ + L"\\there";
    ASSERT_EQ(Platform::MakeFolder(target), Error::None);
    WriteText(target + L"\\mine.txt", "mine");
    EXPECT_FALSE(Move(target));
    EXPECT_EQ(result_.code, MoveCode::RenameFailed);
    EXPECT_EQ(result_.win32Error, Platform::Code(Error::AlreadyExists));
    EXPECT_EQ(ReadTree(game_), whole_);
    ASSERT_EQ(Platform::RemoveFile(target + L"\\mine.txt"), Error::None);
    EXPECT_TRUE(Move(target));
    EXPECT_EQ(ReadTree(target), whole_);
    EXPECT_EQ(stood_, 1);
    EXPECT_EQ(result_.code, MoveCode::None);
    EXPECT_EQ(result_.files, 3U);
}

TEST_F(FolderMove, IntoItselfWhereItCannotBePutsItBack) {
    EXPECT_FALSE(Move(game_ + L"\\made\\not | a name"));
    ExpectNothingHappened(MoveCode::RenameFailed);
}

TEST_F(FolderMove, IsRefusedBeforeAnythingIsTouched) {
    std::wstring upper = game_;
    for (wchar_t& character : upper)
        character = static_cast<wchar_t>(character >= L'a' && character <= L'z' ? character - 32
                                                                                : character);
    for (const std::wstring& target :
         {std::wstring(), game_, upper, game_ + L"\\", game_ + L"\\.", std::wstring(L"C:\\"),
          Platform::GetShellFolder(Platform::ShellFolder::Personal), std::wstring(L"relative")}) {
        EXPECT_FALSE(Move(target)) << target;
        ExpectNothingHappened(MoveCode::Refused);
    }
    Platform::File held;
    ASSERT_EQ(held.Open(game_ + L"\\Data\\a.dat", {.sharing = Platform::ShareRead}), Error::None);
    EXPECT_FALSE(Move(root_ + L"\\there"));
    EXPECT_EQ(result_.blockingPath, game_ + L"\\Data\\a.dat");
    ExpectNothingHappened(MoveCode::Refused);
}

TEST_F(FolderMove, ACancelledCopyLeavesTheOldFolderWhole) {
    cancelled_ = true;
    EXPECT_FALSE(Move(other_));
    EXPECT_TRUE(result_.copyAborted);
    EXPECT_EQ(result_.code, MoveCode::CopyFailed);
    EXPECT_EQ(ReadTree(game_), whole_);
    EXPECT_EQ(stood_, 0);
}

TEST_F(FolderMove, ACopyIsCheckedFileByFile) {
    std::wstring failed;
    std::wstring mismatch;
    ASSERT_EQ(CopyTree(game_, other_, {}, failed), Error::None);
    EXPECT_TRUE(VerifyCopy(game_, other_, mismatch));
    WriteText(other_ + L"\\Data\\a.dat", "of another size");
    EXPECT_FALSE(VerifyCopy(game_, other_, mismatch));
    EXPECT_EQ(mismatch, game_ + L"\\Data\\a.dat");
    ASSERT_EQ(Platform::RemoveFile(other_ + L"\\Data\\a.dat"), Error::None);
    ASSERT_EQ(Platform::MakeFolder(other_ + L"\\Data\\a.dat"), Error::None);
    EXPECT_FALSE(VerifyCopy(game_, other_, mismatch));
}

TEST_F(FolderMove, AnInterruptedMoveIntoItselfIsPutBack) {
    // No process has this id.
    const std::wstring temporary = root_ + L"\\_tolvan_move_999999999";
    ASSERT_EQ(Platform::MovePath(game_, temporary, {}), Error::None);
    ASSERT_TRUE(CreateFolderPath(game_ + L"\\made\\on the way"));
    PutBackInterruptedMove(game_);
    EXPECT_EQ(ReadTree(game_), whole_);
    EXPECT_FALSE(Platform::PathExists(temporary));
}

TEST_F(FolderMove, NothingIsPutBackOverAFileOrByAMoveUnderWay) {
    const std::wstring ended = root_ + L"\\_tolvan_move_999999999";
    const std::wstring running =
        root_ + L"\\_tolvan_move_" + std::to_wstring(Platform::OwnProcessId());
    ASSERT_EQ(Platform::MovePath(game_, running, {}), Error::None);
    PutBackInterruptedMove(game_);
    EXPECT_EQ(ReadTree(running), whole_);
    ASSERT_EQ(Platform::MovePath(running, ended, {}), Error::None);
    ASSERT_TRUE(CreateFolderPath(game_ + L"\\deep"));
    WriteText(game_ + L"\\deep\\mine.txt", "mine");
    PutBackInterruptedMove(game_);
    EXPECT_EQ(ReadTree(ended), whole_);
    EXPECT_EQ(ReadText(game_ + L"\\deep\\mine.txt"), "mine");
}

}  // namespace
}  // namespace Launcher
