#include "patch/pipeline/pipeline_fixture.h"
#include "platform/clock.h"

/// What Wine's HTTP does not do as Windows does: it takes a broken connection for the end of the
/// body. And what Windows cannot do: wake a wait for the network.
namespace Launcher {
namespace {

TEST_F(PipelineTest, ABrokenConnectionIsNoList) {
    Publish("file", "payload");
    for (const char* rule : {"@http=close", "scripts/index.txt=cut:5,reset"}) {
        const TestServer::Misbehaviour misbehaviour(rule);
        TestServer::DropConnections();
        EXPECT_EQ(Run().back(), State::ErrDownload) << rule;
        EXPECT_EQ(Progress().errorText, L"The update list could not be downloaded.") << rule;
    }
}

TEST_F(PipelineTest, ShutdownWakesAWorkerThatHangsOnTheNetwork) {
    Publish("file", "payload");
    for (const char* path : {"scripts/index.txt", "patcher/get/file"}) {
        const TestServer::Misbehaviour stalling(std::string(path) + "=stall:5");
        Begin();
        TickUntil([&] { return WasRequested(path); });
        const double start = Platform::MonotonicSeconds();
        pipeline_.Shutdown();
        EXPECT_LT(Platform::MonotonicSeconds() - start, 0.4) << path;
        EXPECT_TRUE(folder_.Files().empty());
    }
}

}  // namespace
}  // namespace Launcher
