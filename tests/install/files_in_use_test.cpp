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

    const std::wstring folder_ = MakeTestFolder();
};

TEST_F(FilesInUse, OnlyAHandleThatDoesNotShareDeletionCounts) {
    using namespace Platform;
    const std::wstring file = folder_ + L"\\Data\\deep\\held.dat";
    const struct {
        std::wstring path;
        OpenOptions options;
        bool counts;
    } cases[] = {
        {file, {.sharing = ShareRead | ShareWrite}, true},
        {file, {.access = AccessWrite, .sharing = ShareNone}, true},
        {file, {.sharing = ShareAll}, false},
        {folder_ + L"\\Data\\deep", {.sharing = ShareRead, .folder = true}, true},
        {folder_, {.sharing = ShareRead, .folder = true}, true},
    };
    for (const auto& [path, options, counts] : cases) {
        File held;
        ASSERT_EQ(held.Open(path, options), Error::None);
        std::wstring found = L"stale";
        EXPECT_EQ(FindFileInUse(folder_, found), !counts);
        EXPECT_EQ(found, counts ? path : L"");
    }
    EXPECT_EQ(ReadText(file), "held") << "the probe changes nothing";
}

TEST_F(FilesInUse, WhatIsGoneIsFree) {
    std::wstring path = L"stale";
    EXPECT_TRUE(FindFileInUse(folder_ + L"\\gone", path));
    EXPECT_TRUE(FindFileInUse(folder_ + L"\\gone\\deeper", path));
    EXPECT_EQ(path, L"");
}

}  // namespace
}  // namespace Launcher
