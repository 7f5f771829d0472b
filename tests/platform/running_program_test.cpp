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

TEST_F(RunningProgram, HoldsWhatItHasOpenUntilItIsKilled) {
    const std::wstring held = At(L"held.dat");
    WriteText(held, "held");
    TestSupport::HelperProcess holder;
    ASSERT_EQ(holder.Start(path_, {L"open", held, std::to_wstring(AccessRead),
                                   std::to_wstring(ShareNone), At(L"holds"), At(L"stop")}),
              Error::None);
    ASSERT_TRUE(TestSupport::WaitForFile(At(L"holds")));
    File file;
    EXPECT_EQ(file.Open(held, {}), Error::SharingViolation);
    EXPECT_EQ(file.Open(held, {.access = AccessDelete}), Error::SharingViolation);
    EXPECT_EQ(RemoveFile(held), Error::SharingViolation);
    EXPECT_EQ(MovePath(held, At(L"moved"), {}), Error::SharingViolation);
    holder.Kill();
    EXPECT_EQ(ReadText(held), "held");
    EXPECT_EQ(RemoveFile(held), Error::None);
}

}  // namespace
}  // namespace Platform
