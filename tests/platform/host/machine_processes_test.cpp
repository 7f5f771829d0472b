// What the host adapter has to do that Windows does by itself.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "platform/host/machine.h"
#include "platform/processes.h"
#include "support/helper_process.h"
#include "support/test_files.h"

using namespace Platform;
using namespace TestSupport;

TEST(HostProcesses, WhatOnlyThisSystemWouldRunIsRefused) {
    const std::wstring script = MakeTestFolder() + L"\\script.exe";
    WriteText(script, "#!/bin/sh\nexit 0\n");
    HelperProcess process;
    EXPECT_EQ(process.Start(script, {}), Error::BadExecutable);
}

TEST(HostProcesses, ADescriptorThatIsStillOpenForWritingIsWaitedFor) {
    const std::wstring program = MakeTestFolder() + L"\\program.exe";
    InstallHelper(program);
    const int file = open(Host::HostPathOf(program).c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(file, 0);
    std::jthread writer([file] {
        usleep(20'000);
        close(file);
    });
    HelperProcess process;
    EXPECT_EQ(process.Start(program, {}), Error::None);
}

TEST(HostProcesses, OneThatNobodyWaitedForHasEnded) {
    const pid_t child = fork();
    if (child == 0) _exit(0);
    ASSERT_GT(child, 0);
    siginfo_t information{};
    ASSERT_EQ(waitid(P_PID, static_cast<id_t>(child), &information, WEXITED | WNOWAIT), 0);
    EXPECT_TRUE(HasProcessEnded(static_cast<std::uint32_t>(child)));
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

TEST(HostProcesses, AProgramInheritsNoOpenFile) {
    const std::wstring folder = MakeTestFolder();
    InstallHelper(folder + L"\\heir.exe");
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);  // without the flag that closes them at the start of a program
    HelperProcess heir;
    ASSERT_EQ(
        heir.Start(folder + L"\\heir.exe", {L"stay", folder + L"\\ready", folder + L"\\stop"}),
        Error::None);
    ASSERT_TRUE(WaitForFile(folder + L"\\ready"));
    close(ends[1]);
    pollfd ended{ends[0], POLLIN, 0};
    EXPECT_EQ(poll(&ended, 1, 0), 1) << "somebody else holds the pipe's other end";
    close(ends[0]);
}
