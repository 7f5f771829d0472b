#include "platform/late_removal.h"

#include "platform/files.h"
#include "support/scratch.h"

namespace Platform {
namespace {

using TestSupport::WriteText;

class LateRemoval : public TestSupport::Scratch {};

TEST_F(LateRemoval, AFolderGoesWithAllBelowAndNothingBesideIt) {
    ASSERT_EQ(MakeFolderPath(At(L"it's one & two\\вниз")), Error::None);
    WriteText(At(L"it's one & two\\file"), "");
    WriteText(At(L"it's one & two\\вниз\\file"), "");
    WriteText(At(L"it"), "a neighbour");
    EXPECT_EQ(RemoveFolderLater(At(L"it's one & two"), 1), Error::None);
    EXPECT_TRUE(TestSupport::WaitUntil([&] { return !PathExists(At(L"it's one & two")); }));
    EXPECT_TRUE(PathExists(At(L"it")));
}

}  // namespace
}  // namespace Platform
