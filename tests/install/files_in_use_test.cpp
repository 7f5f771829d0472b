#include "install/files_in_use.h"

#include <gtest/gtest.h>

#include "install/path_rules.h"
#include "platform/files.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using Platform::Error;
using namespace TestSupport;

class FilesInUse : public testing::Test {
protected:
    FilesInUse() {
        EXPECT_TRUE(CreateFolderPath(folder_ + L"\\Data\\deep"));
        WriteText(folder_ + L"\\Data\\deep\\held.dat", "held");
        WriteText(folder_ + L"\\other.dat", "other");
        EXPECT_EQ(Platform::ChangeAttributes(folder_ + L"\\other.dat", Platform::AttributeReadOnly),
                  Error::None);
    }

    /// What FindFileInUse names while the file is held open so.
    std::wstring FoundWhile(const std::wstring& name, const Platform::OpenOptions& options) {
        Platform::File held;
        EXPECT_EQ(held.Open(folder_ + name, options), Error::None);
        std::wstring path = L"stale";
        const bool isFree = FindFileInUse(folder_, path);
        EXPECT_EQ(isFree, path.empty());
        return path;
    }

    const std::wstring folder_ = MakeTestFolder();
};

TEST_F(FilesInUse, OnlyAHandleThatDoesNotShareDeletionCounts) {
    const std::wstring held = L"\\Data\\deep\\held.dat";
    EXPECT_EQ(FoundWhile(held, {.sharing = Platform::ShareRead | Platform::ShareWrite}),
              folder_ + held);
    EXPECT_EQ(FoundWhile(held, {.access = Platform::AccessWrite, .sharing = Platform::ShareNone}),
              folder_ + held);
    EXPECT_EQ(FoundWhile(held, {.sharing = Platform::ShareAll}), L"");
    EXPECT_EQ(ReadText(folder_ + held), "held") << "the probe changes nothing";
}

TEST_F(FilesInUse, AFolderThatIsHeldCountsAlsoTheTopOne) {
    const Platform::OpenOptions hold{.sharing = Platform::ShareRead, .folder = true};
    EXPECT_EQ(FoundWhile(L"\\Data\\deep", hold), folder_ + L"\\Data\\deep");
    EXPECT_EQ(FoundWhile(L"", hold), folder_);
}

TEST_F(FilesInUse, WhatIsGoneIsFree) {
    std::wstring path = L"stale";
    EXPECT_TRUE(FindFileInUse(folder_ + L"\\gone", path));
    EXPECT_TRUE(FindFileInUse(folder_ + L"\\gone\\deeper", path));
    EXPECT_EQ(path, L"");
}

}  // namespace
}  // namespace Launcher
