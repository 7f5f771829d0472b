#include <gmock/gmock.h>

#include "patch/pipeline/pipeline_fixture.h"
#include "platform/clock.h"

/// A pass that is told to stop, in each of its states.
namespace Launcher {
namespace {

class StopTest : public PipelineTest {
protected:
    StopTest() {
        for (int i = 0; i < 30; ++i) {
            const std::string name = "file" + std::to_string(i);
            folder_.Write(L"Data\\" + std::to_wstring(i), "unlisted");
            Publish(name, "new");
        }
        folder_.Write(L"Data\\file0", Wrapped("old"));
    }

    void BeginAndReach(State state) {
        Begin();
        TickUntil([&] { return Progress().state == state; });
        pipeline_.Tick();  // starts the state's worker
    }

    void ExpectWholeFiles() {
        for (const auto& [path, bytes] : folder_.Files()) {
            EXPECT_TRUE(bytes == "unlisted" || bytes == Wrapped("old") || bytes == Wrapped("new"));
            EXPECT_FALSE(path.ends_with(L".part"));
        }
    }
};

constexpr State RunStates[] = {State::Manifest, State::Parse, State::Compare, State::Update,
                               State::Verify};

TEST_F(StopTest, StopNeverWaitsAndTheNextPassEndsWell) {
    for (const State state : RunStates) {
        folder_.Write(L"Data\\file0", Wrapped("old"));
        BeginAndReach(state);
        const double start = Platform::MonotonicSeconds();
        pipeline_.Stop();
        EXPECT_LT(Platform::MonotonicSeconds() - start, 0.25) << StateName(state);
        EXPECT_EQ(pipeline_.Tick(), state) << "a stopped pass stands still";
        EXPECT_EQ(Run().back(), State::Ready) << "stopped in " << StateName(state);
        ExpectWholeFiles();
    }
}

TEST_F(StopTest, ShutdownLeavesWholeFilesAndNoPart) {
    for (const State state : RunStates) {
        folder_.Write(L"Data\\file0", Wrapped("old"));
        BeginAndReach(state);
        pipeline_.Shutdown();
        ExpectWholeFiles();
    }
    EXPECT_EQ(Run().back(), State::Ready);
}

TEST_F(StopTest, APassThatHangsOnTheNetworkIsReplacedWithoutWaiting) {
    for (const char* path : {"scripts/index.txt", "patcher/get/file3"}) {
        {
            const TestServer::Misbehaviour stalling(std::string(path) + "=stall:5,times:1");
            folder_.Write(L"Data\\file3", "unlisted");
            Begin();
            TickUntil([&] { return WasRequested(path); });
            const double start = Platform::MonotonicSeconds();
            Begin();
            EXPECT_LT(Platform::MonotonicSeconds() - start, 0.25) << path;
        }
        EXPECT_EQ(Finish().back(), State::Ready) << path;
        ExpectWholeFiles();
    }
}

}  // namespace
}  // namespace Launcher
