#include <gtest/gtest.h>

#include "patch/fetch.h"
#include "platform/files.h"
#include "support/test_files.h"

namespace {

TEST(CrcOfFile, IsZeroForWhatCannotBeRead) {
    const std::wstring folder = TestSupport::MakeTestFolder();
    EXPECT_EQ(Launcher::CrcOfFile(folder + L"\\missing"), 0u);
    EXPECT_EQ(Launcher::CrcOfFile(folder), 0u);
    TestSupport::WriteText(folder + L"\\held", "text");
    Platform::File held;
    ASSERT_EQ(held.Open(folder + L"\\held", {.sharing = Platform::ShareNone}),
              Platform::Error::None);
    EXPECT_EQ(Launcher::CrcOfFile(folder + L"\\held"), 0u);
}

}  // namespace
