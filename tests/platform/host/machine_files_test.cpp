// What the host adapter does by itself, so that the machine behaves as one.

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "platform/disks.h"
#include "platform/files.h"
#include "platform/host/machine.h"
#include "platform/text.h"
#include "support/helper_process.h"
#include "support/scratch.h"

namespace Platform {
namespace {

using Host::HostPathOf;
using TestSupport::Bytes;
using TestSupport::ReadText;
using TestSupport::WriteText;

constexpr OpenOptions Create{.access = AccessWrite, .disposition = Disposition::CreateAlways};

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

TEST_F(MachineFiles, ThreadsLookTogether) {
    WriteText(At(L"Shared"), "shared");
    std::vector<std::jthread> threads;
    for (wchar_t letter = L'a'; letter < L'e'; ++letter) {
        threads.emplace_back([this, letter] {
            for (int index = 0; index < 50; ++index) {
                const std::wstring name = At(L"Name") + letter + std::to_wstring(index);
                WriteText(name, "x");
                EXPECT_EQ(ReadText(At(L"SHARED")), "shared");
                EXPECT_EQ(RemoveFile(LowerCase(name)), Error::None);
                EXPECT_FALSE(PathExists(name));
            }
        });
    }
}

TEST_F(MachineFiles, ExactlyOneOfManyOpensWithoutSharing) {
    WriteText(At(L"prize"), "");
    for (int round = 0; round < 20; ++round) {
        std::vector<File> files(6);
        std::atomic<int> winners = 0;
        std::vector<std::jthread> threads;
        for (File& file : files) {
            threads.emplace_back([&] {
                const Error error = file.Open(
                    At(L"prize"), {.access = AccessRead | AccessWrite, .sharing = ShareNone});
                winners += Succeeded(error) ? 1 : 0;
                EXPECT_TRUE(Succeeded(error) || error == Error::SharingViolation);
            });
        }
        threads.clear();
        EXPECT_EQ(winners, 1);
    }
}

TEST_F(MachineFiles, WithoutRightsNothingChanges) {
    ASSERT_EQ(MakeFolder(At(L"locked")), Error::None);
    ASSERT_EQ(MakeFolder(At(L"locked\\inner")), Error::None);
    WriteText(At(L"locked\\file"), "kept");
    WriteText(At(L"file"), "other");
    const std::string host = HostPathOf(At(L"locked"));
    ASSERT_EQ(chmod(host.c_str(), 0555), 0);
    File file;
    EXPECT_EQ(file.Open(At(L"locked\\new"), Create), Error::AccessDenied);
    EXPECT_EQ(file.Open(At(L"locked\\file"), {.access = AccessWrite}), Error::AccessDenied);
    EXPECT_EQ(file.Open(At(L"locked\\file"), {.access = AccessDelete}), Error::AccessDenied);
    EXPECT_EQ(RemoveFile(At(L"locked\\file")), Error::AccessDenied);
    EXPECT_EQ(RemoveEmptyFolder(At(L"locked\\inner")), Error::AccessDenied);
    EXPECT_EQ(MakeFolder(At(L"locked\\made")), Error::AccessDenied);
    EXPECT_EQ(MovePath(At(L"locked\\file"), At(L"moved"), {}), Error::AccessDenied);
    EXPECT_EQ(MovePath(At(L"file"), At(L"locked\\moved"), {}), Error::AccessDenied);
    EXPECT_EQ(ReadText(At(L"locked\\file")), "kept");
    ASSERT_EQ(chmod(host.c_str(), 0755), 0);
    EXPECT_EQ(RemoveFile(At(L"locked\\file")), Error::None);
}

TEST_F(MachineFiles, WhatAKilledProcessWouldHaveDeletedIsGone) {
    TestSupport::InstallHelper(At(L"helper.exe"));
    ASSERT_EQ(MakeFolder(At(L"folder")), Error::None);
    const std::wstring path = At(L"folder\\probe.tmp");
    const std::function<void()> looks[] = {
        [&] { EXPECT_FALSE(PathExists(path)); },
        [&] {
            std::vector<FolderEntry> entries;
            EXPECT_EQ(ListFolder(At(L"folder"), entries), Error::None);
            EXPECT_TRUE(entries.empty());
        },
        [&] {
            File file;
            EXPECT_EQ(file.Open(path, {}), Error::FileNotFound);
            EXPECT_EQ(
                file.Open(path, {.access = AccessWrite, .disposition = Disposition::CreateNew}),
                Error::None);
            file.Close();
            EXPECT_EQ(RemoveFile(path), Error::None);
        },
        [&] { EXPECT_EQ(RemoveEmptyFolder(At(L"folder")), Error::None); },
    };
    for (const auto& look : looks) {
        TestSupport::HelperProcess process;
        ASSERT_EQ(
            process.Start(At(L"helper.exe"), {L"delete-on-close", path, At(L"ready"), At(L"stop")}),
            Error::None);
        ASSERT_TRUE(TestSupport::WaitForFile(At(L"ready")));
        EXPECT_TRUE(PathExists(path));
        process.Kill();
        look();
        EXPECT_EQ(RemoveFile(At(L"ready")), Error::None);
    }
}

// A second drive, which may be a disk of its own.
class OtherDrive : public TestSupport::Scratch {
protected:
    OtherDrive() { std::filesystem::create_directory(host_); }
    ~OtherDrive() override {
        if (isMounted_) umount(host_.c_str());
        std::filesystem::remove_all(host_);
    }

    bool Mount(unsigned long flags) {
        const unsigned long remount = isMounted_ ? MS_REMOUNT : 0;
        isMounted_ = mount("tmpfs", host_.c_str(), "tmpfs", flags | remount, "size=256k") == 0;
        return isMounted_;
    }

    const std::string host_ = Host::MachineFolder() + "/drive_t";
    bool isMounted_ = false;
};

TEST_F(OtherDrive, IsAnotherDevice) {
    WriteText(At(L"file"), "text");
    ASSERT_EQ(MakeFolder(At(L"folder")), Error::None);
    EXPECT_EQ(MovePath(At(L"file"), L"T:\\file", {}), Error::NotSameDevice);
    EXPECT_EQ(MovePath(At(L"folder"), L"T:\\folder", {}), Error::NotSameDevice);
    EXPECT_EQ(MovePath(At(L"folder"), L"T:\\folder", {.copyAllowed = true}), Error::AccessDenied);
    EXPECT_EQ(MovePath(At(L"gone"), L"T:\\file", {}), Error::FileNotFound);
    EXPECT_EQ(MovePath(At(L"file"), L"T:\\file", {.copyAllowed = true}), Error::None);
    EXPECT_EQ(ReadText(L"T:\\file"), "text");
    EXPECT_FALSE(PathExists(At(L"file")));
    const std::vector<std::wstring> drives = ListFixedDrives();
    EXPECT_EQ(drives, (std::vector<std::wstring>{L"C:", L"D:", L"T:"}));
    EXPECT_EQ(MakeFolder(L"Q:\\x"), Error::PathNotFound);
    FileInfo info;
    EXPECT_EQ(GetFileInfo(L"Q:\\", info), Error::PathNotFound);
}

TEST_F(OtherDrive, Full) {
    if (!Mount(0)) GTEST_SKIP() << "only root mounts a disk";
    DiskSpace space;
    ASSERT_EQ(GetDiskSpace(L"T:\\", space), Error::None);
    EXPECT_EQ(space.totalBytes, 256u * 1024);
    File file;
    ASSERT_EQ(file.Open(L"T:\\file", Create), Error::None);
    const std::string block(300 * 1024, 'x');
    EXPECT_EQ(file.Write(Bytes(block)), Error::DiskFull);
    file.Close();
    ASSERT_EQ(GetDiskSpace(L"T:\\", space), Error::None);
    EXPECT_EQ(space.freeBytes, 0u);
    WriteText(At(L"file"), block);
    EXPECT_EQ(RemoveFile(L"T:\\file"), Error::None);
    EXPECT_EQ(MovePath(At(L"file"), L"T:\\file", {.copyAllowed = true}), Error::DiskFull);
    EXPECT_FALSE(PathExists(L"T:\\file"));
    EXPECT_EQ(ReadText(At(L"file")), block);
}

TEST_F(OtherDrive, WriteProtected) {
    if (!Mount(0)) GTEST_SKIP() << "only root mounts a disk";
    WriteText(L"T:\\file", "text");
    ASSERT_TRUE(Mount(MS_RDONLY));
    File file;
    EXPECT_EQ(file.Open(L"T:\\new", Create), Error::WriteProtected);
    EXPECT_EQ(file.Open(L"T:\\file", {.access = AccessWrite}), Error::WriteProtected);
    EXPECT_EQ(RemoveFile(L"T:\\file"), Error::WriteProtected);
    EXPECT_EQ(MakeFolder(L"T:\\folder"), Error::WriteProtected);
    EXPECT_EQ(MovePath(L"T:\\file", L"T:\\moved", {}), Error::WriteProtected);
    EXPECT_EQ(file.Open(L"T:\\file", {.sharing = ShareRead}), Error::None);
    EXPECT_EQ(ReadText(L"T:\\file"), "text");
}

}  // namespace
}  // namespace Platform
