// What the host adapter does by itself, so that the machine behaves as one.

#include <filesystem>
#include <fstream>

#include "platform/files.h"
#include "platform/host/machine.h"
#include "support/helper_process.h"
#include "support/scratch.h"

namespace Platform {
namespace {

using Host::HostPathOf;
using TestSupport::ReadText;
using TestSupport::WriteText;

class MachineFiles : public TestSupport::Scratch {};

TEST_F(MachineFiles, NamesFoundWithoutRegardToCaseKeepUpWithTheDisk) {
    const std::string host = HostPathOf(folder_);
    EXPECT_FALSE(PathExists(At(L"FILE")));
    // Other programs do not go through this one's knowledge of the folder.
    std::ofstream(host + "/File") << "one";
    EXPECT_EQ(ReadText(At(L"FILE")), "one");
    std::filesystem::rename(host + "/File", host + "/fILE");
    EXPECT_EQ(ReadText(At(L"FILE")), "one");
    std::filesystem::remove(host + "/fILE");
    EXPECT_FALSE(PathExists(At(L"FILE")));
    EXPECT_FALSE(PathExists(At(L"SUB\\file")));
    std::filesystem::create_directory(host + "/Sub");
    std::ofstream(host + "/Sub/File") << "two";
    EXPECT_EQ(ReadText(At(L"SUB\\FILE")), "two");
    std::filesystem::remove_all(host + "/Sub");
    std::filesystem::create_directory(host + "/sub");
    EXPECT_FALSE(PathExists(At(L"SUB\\FILE")));
    std::ofstream(host + "/twin") << "lower";
    std::ofstream(host + "/TWIN") << "upper";
    EXPECT_EQ(ReadText(At(L"TWIN")), "upper");
    EXPECT_EQ(RemoveFile(At(L"TWIN")), Error::None);
    EXPECT_EQ(ReadText(At(L"Twin")), "lower");
}

TEST_F(MachineFiles, ManyChangesAtOnceAreNotMissed) {
    EXPECT_FALSE(PathExists(At(L"NAME0")));
    const std::string host = HostPathOf(folder_);
    const int limit = [] {
        int events = 0;
        std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> events;
        return events;
    }();
    for (int index = 0; index < limit / 2 + 10; ++index) {
        std::ofstream(host + "/other").close();
        std::filesystem::remove(host + "/other");
    }
    std::ofstream(host + "/Name0") << "seen";
    EXPECT_EQ(ReadText(At(L"NAME0")), "seen");
}

TEST_F(MachineFiles, WhatAKilledProcessWouldHaveDeletedIsGone) {
    TestSupport::InstallHelper(At(L"helper.exe"));
    ASSERT_EQ(MakeFolder(At(L"folder")), Error::None);
    const std::wstring path = At(L"folder\\probe.tmp");
    // Whoever looks first takes it away, be it at the file or at its folder.
    for (const bool looksAtFolder : {false, true}) {
        TestSupport::HelperProcess process;
        ASSERT_EQ(
            process.Start(At(L"helper.exe"), {L"delete-on-close", path, At(L"ready"), At(L"stop")}),
            Error::None);
        ASSERT_TRUE(TestSupport::WaitForFile(At(L"ready")));
        EXPECT_TRUE(PathExists(path));
        process.Kill();
        if (looksAtFolder) {
            EXPECT_EQ(RemoveEmptyFolder(At(L"folder")), Error::None);
        } else {
            EXPECT_FALSE(PathExists(path));
        }
        EXPECT_EQ(RemoveFile(At(L"ready")), Error::None);
    }
}

}  // namespace
}  // namespace Platform
