#include "platform/files.h"
#include "support/helper_process.h"
#include "support/scratch.h"

namespace Platform {
namespace {

using TestSupport::ReadText;
using TestSupport::WriteText;

class RunningProgram : public TestSupport::Scratch {
protected:
    RunningProgram() {
        TestSupport::InstallHelper(path_);
        EXPECT_EQ(process_.Start(path_, {L"stay", At(L"ready"), At(L"stop")}), Error::None);
        EXPECT_TRUE(TestSupport::WaitForFile(At(L"ready")));
    }
    ~RunningProgram() override { process_.Kill(); }

    const std::wstring path_ = At(L"game.exe");
    TestSupport::HelperProcess process_;
};

TEST_F(RunningProgram, IsNeitherRemovedNorWrittenNorReplaced) {
    WriteText(At(L"new.exe"), "new");
    File file;
    EXPECT_EQ(RemoveFile(path_), Error::AccessDenied);
    EXPECT_EQ(file.Open(path_, {.access = AccessWrite}), Error::SharingViolation);
    EXPECT_EQ(file.Open(path_, {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
              Error::SharingViolation);
    EXPECT_EQ(CopyFileTo(At(L"new.exe"), path_, true), Error::SharingViolation);
    EXPECT_EQ(MovePath(At(L"new.exe"), path_, {.replaceExisting = true}), Error::AccessDenied);
    EXPECT_EQ(ReadText(At(L"new.exe")), "new");
}

TEST_F(RunningProgram, IsReadCopiedHiddenAndProbed) {
    File file;
    EXPECT_EQ(file.Open(path_, {}), Error::None);
    EXPECT_EQ(file.Open(path_, {.sharing = ShareRead}), Error::None);
    EXPECT_EQ(file.Open(path_, {.access = AccessDelete}), Error::None);
    EXPECT_EQ(CopyFileTo(path_, At(L"copy.exe"), false), Error::None);
    EXPECT_EQ(ChangeAttributes(path_, AttributeHidden | AttributeSystem), Error::None);
    EXPECT_EQ(ChangeAttributes(path_, AttributeNormal), Error::None);
}

TEST_F(RunningProgram, IsRenamedAndItsPlaceTakenByTheNext) {
    TestSupport::InstallHelper(At(L"new.exe"));
    ASSERT_EQ(MovePath(path_, At(L"game.exe.old0"), {.writeThrough = true}), Error::None);
    ASSERT_EQ(MovePath(At(L"new.exe"), path_, {.writeThrough = true}), Error::None);
    EXPECT_EQ(RemoveFile(At(L"game.exe.old0")), Error::AccessDenied);
    WriteText(At(L"stop"), "");
    ASSERT_TRUE(process_.WaitForEnd());
    EXPECT_EQ(RemoveFile(At(L"game.exe.old0")), Error::None);
    EXPECT_EQ(RemoveFile(path_), Error::None);
}

// What another process holds, it holds until it ends, in whatever way.
class HeldByAnother : public TestSupport::Scratch {
protected:
    HeldByAnother() {
        WriteText(path_, "held");
        TestSupport::InstallHelper(At(L"helper.exe"));
    }
    ~HeldByAnother() override { process_.Kill(); }

    void Hold(unsigned access, unsigned sharing) {
        ASSERT_EQ(process_.Start(At(L"helper.exe"),
                                 {L"open", path_, std::to_wstring(access), std::to_wstring(sharing),
                                  At(L"ready"), At(L"stop")}),
                  Error::None);
        ASSERT_TRUE(TestSupport::WaitForFile(At(L"ready")));
    }

    const std::wstring path_ = At(L"held.dat");
    TestSupport::HelperProcess process_;
};

TEST_F(HeldByAnother, WithoutSharing) {
    Hold(AccessRead, ShareNone);
    File file;
    EXPECT_EQ(file.Open(path_, {}), Error::SharingViolation);
    EXPECT_EQ(file.Open(path_, {.access = AccessDelete}), Error::SharingViolation);
    EXPECT_EQ(RemoveFile(path_), Error::SharingViolation);
    EXPECT_EQ(MovePath(path_, At(L"moved"), {}), Error::SharingViolation);
    EXPECT_TRUE(PathExists(path_));
    process_.Kill();
    EXPECT_EQ(ReadText(path_), "held");
    EXPECT_EQ(RemoveFile(path_), Error::None);
}

TEST_F(HeldByAnother, SharingReadingOnly) {
    Hold(AccessRead, ShareRead);
    EXPECT_EQ(ReadText(path_), "held");
    File file;
    EXPECT_EQ(file.Open(path_, {.access = AccessWrite}), Error::SharingViolation);
    EXPECT_EQ(RemoveFile(path_), Error::SharingViolation);
    WriteText(At(L"stop"), "");
    ASSERT_TRUE(process_.WaitForEnd());
    EXPECT_EQ(file.Open(path_, {.access = AccessWrite}), Error::None);
}

}  // namespace
}  // namespace Platform
