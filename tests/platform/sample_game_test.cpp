// What the launcher can see of a game that it started, tried with the sample game.

#include <gtest/gtest.h>

#include "platform/files.h"
#include "platform/named_objects.h"
#include "platform/processes.h"
#include "support/display.h"
#include "support/helper_process.h"
#include "support/test_files.h"

using namespace Platform;
using namespace TestSupport;

namespace {

class SampleGame : public testing::Test {
protected:
    SampleGame() { InstallSampleGame(program_); }

    /// Starts the game with these settings and waits until its log holds the text.
    void Start(const std::string& settings, const std::string& text) {
        WriteText(folder_ + L"\\sample_game.cfg", settings);
        ASSERT_EQ(game_.Start(program_, {}, folder_), Error::None);
        ASSERT_TRUE(WaitForLog(text)) << Log();
    }
    void Stop() {
        WriteText(folder_ + L"\\sample_game.stop", "");
        EXPECT_TRUE(game_.WaitForEnd());
    }
    std::string Log() const { return ReadText(folder_ + L"\\sample_game.log"); }
    bool WaitForLog(const std::string& text) const {
        return WaitUntil([&] { return Log().find(text) != std::string::npos; });
    }
    std::wstring ReadyEvent() const {
        return L"Local\\TolvanOnline.Ready." + std::to_wstring(game_.Id());
    }

    const std::wstring folder_ = MakeTestFolder();
    const std::wstring program_ = folder_ + L"\\.Tolvan Online.exe";
    HelperProcess game_;
};

}  // namespace

TEST_F(SampleGame, SetsItsReadyEventAfterAWhile) {
    Start("ready=100", "ready event made");
    NamedEvent ready;
    ASSERT_EQ(ready.Open(ReadyEvent()), Error::None);
    EXPECT_TRUE(WaitUntil([&] { return ready.IsSet(); }));
    ready.Close();
    Stop();
    EXPECT_EQ(ready.Open(ReadyEvent()), Error::FileNotFound);
}

TEST_F(SampleGame, HoldsItsReadyEventUnset) {
    Start("ready=hold\r\nexit-after=60000", "ready event made");
    NamedEvent ready;
    ASSERT_EQ(ready.Open(ReadyEvent()), Error::None);
    EXPECT_FALSE(ready.IsSet());
    EXPECT_EQ(Log().find("event set"), std::string::npos);
    Stop();
}

TEST_F(SampleGame, DiesAtOnceWithItsCode) {
    Start("exit-after=0;exit-code=3", "ends with 3");
    EXPECT_TRUE(game_.WaitForEnd());
}

TEST_F(SampleGame, RefusesSettingsItDoesNotKnow) {
    Start("raedy=100", "raedy=100");
    EXPECT_TRUE(game_.WaitForEnd());
}

TEST_F(SampleGame, ShowsAMainWindowAndGoesIdle) {
    const Display display;
    Start("ready=never;window=640x480", "window shown");
    NamedEvent ready;
    EXPECT_EQ(ready.Open(ReadyEvent()), Error::FileNotFound);
    EXPECT_TRUE(WaitUntil([&] { return HasMainWindow(game_.Id()); }));
    EXPECT_TRUE(WaitUntil([&] { return IsProcessIdle(game_.Id()); }));
    EXPECT_FALSE(HasMainWindow(OwnProcessId()));
    Stop();
    EXPECT_FALSE(HasMainWindow(game_.Id()));
}

TEST_F(SampleGame, ASmallWindowIsNoMainWindow) {
    const Display display;
    HelperProcess large;
    const std::wstring otherFolder = MakeTestFolder();
    InstallSampleGame(otherFolder + L"\\game.exe");
    WriteText(otherFolder + L"\\sample_game.cfg", "ready=never;window=200x200");
    Start("ready=never;window=640x120", "window shown");
    ASSERT_EQ(large.Start(otherFolder + L"\\game.exe", {}, otherFolder), Error::None);
    // Once the later one's window is seen, the earlier one's would be, too.
    EXPECT_TRUE(WaitUntil([&] { return HasMainWindow(large.Id()); }));
    EXPECT_FALSE(HasMainWindow(game_.Id()));
}
