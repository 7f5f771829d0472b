// What the launcher can see of a game that it started.

#include <gtest/gtest.h>

#include "platform/processes.h"
#include "support/helper_process.h"
#include "support/test_files.h"

using namespace Platform;
using namespace TestSupport;

namespace {

/// The sample game with a window of that size.
class Game {
public:
    explicit Game(const std::string& size) {
        InstallSampleGame(folder_ + L"\\game.exe");
        WriteText(folder_ + L"\\sample_game.cfg", "ready=never;window=" + size);
        EXPECT_EQ(process_.Start(folder_ + L"\\game.exe", {}, folder_), Error::None);
        EXPECT_TRUE(WaitUntil([this] {
            const std::string log = ReadText(folder_ + L"\\sample_game.log");
            return log.find("window shown") != log.npos;
        }));
    }
    std::uint32_t Id() const { return process_.Id(); }

private:
    const std::wstring folder_ = MakeTestFolder();
    HelperProcess process_;
};

}  // namespace

TEST(MainWindow, IsSeenFromASizeOnAndThenTheProgramIsIdle) {
    const Game small("640x120");
    const Game large("200x200");
    EXPECT_TRUE(WaitUntil([&] { return HasMainWindow(large.Id()); }));
    EXPECT_TRUE(WaitUntil([&] { return IsProcessIdle(large.Id()); }));
    // The earlier one's window would be seen by now, too.
    EXPECT_FALSE(HasMainWindow(small.Id()));
    EXPECT_FALSE(HasMainWindow(OwnProcessId()));
}
