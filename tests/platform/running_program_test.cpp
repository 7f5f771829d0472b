#include "platform/files.h"
#include "support/helper_process.h"
#include "support/scratch.h"

namespace Platform {
namespace {

using TestSupport::ReadText;
using TestSupport::WriteText;

class RunningProgram : public TestSupport::Scratch {};

TEST_F(RunningProgram, IsReadCopiedHiddenAndProbedButNeitherRemovedNorWrittenNorReplaced) {
    const std::wstring path = At(L"game.exe");
    TestSupport::InstallHelper(path);
    TestSupport::HelperProcess process;
    ASSERT_EQ(process.Start(path, {L"stay", At(L"ready"), At(L"stop")}), Error::None);
    ASSERT_TRUE(TestSupport::WaitForFile(At(L"ready")));
    WriteText(At(L"new.exe"), "new");
    File file;
    EXPECT_EQ(RemoveFile(path), Error::AccessDenied);
    EXPECT_EQ(file.Open(path, {.access = AccessWrite}), Error::SharingViolation);
    EXPECT_EQ(file.Open(path, {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
              Error::SharingViolation);
    EXPECT_EQ(CopyFileTo(At(L"new.exe"), path, true), Error::SharingViolation);
    EXPECT_EQ(MovePath(At(L"new.exe"), path, {.replaceExisting = true}), Error::AccessDenied);
    EXPECT_EQ(ReadText(At(L"new.exe")), "new");

    EXPECT_EQ(file.Open(path, {.sharing = ShareRead}), Error::None);
    EXPECT_EQ(file.Open(path, {.access = AccessDelete}), Error::None);
    EXPECT_EQ(CopyFileTo(path, At(L"copy.exe"), false), Error::None);
    EXPECT_EQ(ChangeAttributes(path, AttributeHidden | AttributeSystem), Error::None);
    EXPECT_EQ(ChangeAttributes(path, AttributeNormal), Error::None);
}

}  // namespace
}  // namespace Platform
