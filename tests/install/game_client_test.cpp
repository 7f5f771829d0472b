#include "install/game_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/resources.h"
#include "support/helper_process.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace TestSupport;

/// A file of this platform's kind of executable that carries the launcher's marker.
void WriteLauncher(const std::wstring& path) {
    constexpr std::uint16_t MarkedImage = 2;
    const auto bytes = Platform::FindOwnResource(MarkedImage);
    WriteText(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    ASSERT_TRUE(IsLauncherFile(path));
}

TEST(GameClient, FirstNameThatIsNoLauncherIsTaken) {
    const std::wstring folder = MakeTestFolder();
    EXPECT_EQ(FindClient(L""), L"");
    EXPECT_EQ(FindClient(folder), L"");
    EXPECT_EQ(FindClient(folder + L"\\missing"), L"");

    // From the last name to the first: each one beats those before it.
    WriteLauncher(folder + L"\\Tolvan Online.exe");
    EXPECT_EQ(FindClient(folder), L"");
    for (const wchar_t* name :
         {L"Tolvan Online_x86.exe", L".Tolvan Online.exe", L".Tolvan Online_x86.exe"}) {
        WriteText(folder + L"\\" + name, "cannot be read as a program, so it counts as a client");
        EXPECT_EQ(FindClient(folder), folder + L"\\" + name);
        EXPECT_EQ(FindClient(folder + L"\\"), folder + L"\\" + name);
    }
    // Neither a launcher nor a folder stands in a client's way.
    WriteLauncher(folder + L"\\.Tolvan Online_x64.exe");
    EXPECT_EQ(FindClient(folder), folder + L"\\.Tolvan Online_x86.exe");
    ASSERT_EQ(Platform::RemoveFile(folder + L"\\.Tolvan Online_x86.exe"), Platform::Error::None);
    ASSERT_EQ(Platform::MakeFolder(folder + L"\\.Tolvan Online_x86.exe"), Platform::Error::None);
    EXPECT_EQ(FindClient(folder), folder + L"\\.Tolvan Online.exe");
}

class RunningClientsTest : public testing::Test {
protected:
    /// Runs a program under the name in the folder, which it makes.
    void Run(HelperProcess& process, const std::wstring& folder, const wchar_t* name) {
        (void)Platform::MakeFolder(folder);
        const std::wstring program = folder + L"\\" + name;
        InstallHelper(program);
        const std::wstring ready = program + L".ready";
        ASSERT_EQ(process.Start(program, {L"stay", ready, folder + L"\\stop"}),
                  Platform::Error::None);
        ASSERT_TRUE(WaitForFile(ready));
    }

    const std::wstring here_ = MakeTestFolder();
    const std::wstring elsewhere_ = here_ + L"\\elsewhere";
};

TEST_F(RunningClientsTest, DottedNameCountsEverywhereAndPlainNameInItsOwnFolderOnly) {
    HelperProcess plainInside;
    HelperProcess plainOutside;
    Run(plainOutside, elsewhere_, L"Tolvan Online.exe");
    EXPECT_THAT(RunningClients(here_), IsEmpty());
    Run(plainInside, here_, L"Tolvan Online.exe");
    EXPECT_THAT(RunningClients(here_), ElementsAre(plainInside.Id()));
    EXPECT_THAT(RunningClients(elsewhere_), ElementsAre(plainOutside.Id()));

    // The dotted name comes first, so the plain ones count no more.
    HelperProcess inside;
    HelperProcess outside;
    Run(inside, here_, L".Tolvan Online.exe");
    Run(outside, elsewhere_, L".tolvan online.EXE");
    EXPECT_THAT(RunningClients(here_), testing::UnorderedElementsAre(inside.Id(), outside.Id()));
    inside.Kill();
    ASSERT_TRUE(inside.WaitForEnd());
    EXPECT_EQ(CountRunningClients(here_), 1U);
}

}  // namespace
}  // namespace Launcher
