#include "platform/host/registry_store.h"

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/host/machine.h"

using namespace Platform;
using Host::RegistryStore;

namespace {

/// What a process does that finds no registry yet.
int MakeAndWrite(const std::string& file, int writer) {
    RegistryStore store(file);
    const std::wstring name = L"Writer" + std::to_wstring(writer);
    const std::byte data[] = {std::byte{1}};
    return Succeeded(store.CreateKey(L"Software\\Race")) &&
                   Succeeded(store.WriteValue(Host::RegistryKeyId(L"Software\\Race"), name,
                                              RegistryType::Binary, data))
               ? 0
               : 1;
}

}  // namespace

TEST(HostRegistry, IsMadeByManyProcessesAtOnceWhileOneIsKilled) {
    constexpr int Rounds = 15;
    constexpr int Writers = 6;
    std::mt19937 random(1);
    for (int round = 0; round < Rounds; ++round) {
        const std::string file =
            Host::MachineFolder() + "/race" + std::to_string(round) + ".sqlite";
        std::vector<pid_t> writers;
        for (int writer = 0; writer < Writers; ++writer) {
            const pid_t child = fork();
            if (child == 0) _exit(MakeAndWrite(file, writer));
            ASSERT_GT(child, 0);
            writers.push_back(child);
        }
        usleep(std::uniform_int_distribution<unsigned>(0, 3000)(random));
        kill(writers[0], SIGKILL);
        for (const pid_t writer : writers) {
            int status = 0;
            ASSERT_EQ(waitpid(writer, &status, 0), writer);
            EXPECT_TRUE(status == 0 || writer == writers[0]) << "round " << round;
        }
        RegistryStore store(file);
        std::vector<Host::NamedRegistryValue> values;
        ASSERT_EQ(store.ListValues(Host::RegistryKeyId(L"Software\\Race"), values), Error::None);
        EXPECT_GE(values.size(), std::size_t{Writers - 1});
    }
}
