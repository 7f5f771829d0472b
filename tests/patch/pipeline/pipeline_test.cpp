#include <gmock/gmock.h>

#include "patch/pipeline/pipeline_fixture.h"
#include "platform/files.h"
#include "platform/text.h"

/// The roads of a patch pass through a server that behaves.
namespace Launcher {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const auto UpToDate = ElementsAre(State::Manifest, State::Parse, State::Compare, State::Ready);
const auto Updated = ElementsAre(State::Manifest, State::Parse, State::Compare, State::Update,
                                 State::Verify, State::Ready);

TEST_F(PipelineTest, FetchesWhatDiffersAndLeavesTheRest) {
    folder_.Write(L"Data\\current.dat", Wrapped("current"));
    folder_.Write(L"Data\\OUTDATED.dat", Wrapped("old"));
    folder_.Write(L"Data\\size.dat", Wrapped("size") + "x");
    folder_.Write(L"Data\\gone.dat", Wrapped("no longer listed"));
    folder_.Write(L"Data\\cut.dat", Wrapped("cut").substr(0, 10));
    folder_.Write(L"mine.txt", "the player's");
    Publish("current.dat", "current");
    Publish("outdated.dat", "new");
    Publish("size.dat", "size");
    Publish("cut.dat", "cut");
    Publish("deep/in a/folder/\xC3\xA4\xD0\x96.dat", "missing");
    Publish("empty.dat", "");
    List("deleted:gone.dat");
    List("what is this?");

    EXPECT_THAT(Run(), Updated);
    EXPECT_THAT(Fetched(), ElementsAre("outdated.dat", "size.dat", "cut.dat",
                                       "deep/in%20a/folder/%C3%A4%D0%96.dat", "empty.dat"));
    EXPECT_EQ(Progress().fraction, 1.0F);
    EXPECT_EQ(Progress().errorText, L"");

    auto files = folder_.Files();
    // The name keeps the case that it had or gets that of the list: the system decides.
    const auto outdated = folder_.Read(L"Data\\outdated.dat");
    std::erase_if(files, [](const auto& file) {
        return file.first.ends_with(L"TDATED.dat") || file.first.ends_with(L"tdated.dat");
    });
    EXPECT_EQ(outdated, Wrapped("new"));
    const std::map<std::wstring, std::string> expected{
        {L"Data\\current.dat", Wrapped("current")},
        {L"Data\\size.dat", Wrapped("size")},
        {L"Data\\gone.dat", Wrapped("no longer listed")},
        {L"Data\\cut.dat", Wrapped("cut")},
        {L"Data\\deep\\in a\\folder\\\u00E4\u0416.dat", Wrapped("missing")},
        {L"Data\\empty.dat", Wrapped("")},
        {L"mine.txt", "the player's"},
    };
    EXPECT_EQ(files, expected);

    EXPECT_THAT(Run(), UpToDate);
    EXPECT_THAT(Fetched(), IsEmpty());
}

TEST_F(PipelineTest, OnlyARepairSeesADamagedPayload) {
    std::string damaged = Wrapped("payload");
    damaged[18] = '!';
    folder_.Write(L"Data\\file", damaged);
    Publish("file", "payload");

    EXPECT_THAT(Run(), UpToDate);
    EXPECT_THAT(Run(true), Updated);
    EXPECT_EQ(folder_.Read(L"Data\\file"), Wrapped("payload"));
    EXPECT_THAT(Run(true), UpToDate);
}

TEST_F(PipelineTest, TellsHowFarItIs) {
    // Larger than what a read takes at once: on some systems a read of less returns at its end.
    constexpr std::uint64_t large = 256'020;
    constexpr std::uint64_t small = 520;
    constexpr std::uint64_t all = small + large + small;
    Publish("a", std::string(500, 'p'));
    PublishLarge("b", std::string(256, 'p'), 1000);
    Publish("c", std::string(500, 'p'));
    List("and a line without a file");
    for (int i = 0; i < 20; ++i)
        List("");
    const TestServer::Misbehaviour slow("patcher/get/b=trickle:128K");

    Begin();
    TickUntil([&] { return Progress().state == State::Parse; });
    // 24 lines, ten a tick.
    EXPECT_EQ(pipeline_.Tick(), State::Parse);
    EXPECT_EQ(pipeline_.Tick(), State::Parse);
    EXPECT_EQ(pipeline_.Tick(), State::Compare);
    EXPECT_EQ(Progress().filesTotal, 3);

    TickUntil([&] { return Progress().fileBytesDone > 0 && Progress().currentFile == L"Data/b"; });
    const PatchProgress progress = Progress();
    EXPECT_EQ(progress.state, State::Update);
    EXPECT_EQ(progress.filesDone, 1);
    EXPECT_EQ(progress.filesTotal, 3);
    EXPECT_EQ(progress.bytesTotal, all);
    EXPECT_EQ(progress.fileBytesTotal, large);
    EXPECT_LT(progress.fileBytesDone, large);
    EXPECT_EQ(progress.bytesDone, small + progress.fileBytesDone);
    EXPECT_FLOAT_EQ(progress.fraction, static_cast<float>(progress.bytesDone) / all);
    TickUntil([&] { return Progress().bytesPerSecond > 0; });
    EXPECT_NEAR(Progress().bytesPerSecond, 128 * 1024, 90 * 1024);

    EXPECT_EQ(Finish().back(), State::Ready);
    EXPECT_EQ(Progress().currentFile, L"");
}

TEST_F(PipelineTest, DeletesOldCopiesInTheTopFolderOnly) {
    Publish("file", "payload");
    for (const wchar_t* name : {L"old0", L"OLD17", L"older.txt", L"Data\\old0", L"bold"}) {
        folder_.Write(name, "x");
    }
    folder_.Write(L"old folder\\inside", "x");
    ASSERT_EQ(Platform::ChangeAttributes(folder_.Path(L"old0"), Platform::AttributeReadOnly),
              Platform::Error::None);
    {
        Platform::File open;
        folder_.Write(L"old in use", "x");
        ASSERT_EQ(open.Open(folder_.Path(L"old in use"), {.sharing = Platform::ShareRead}),
                  Platform::Error::None);
        Run();
        EXPECT_EQ(folder_.Read(L"old in use"), "x");
    }
    Run();
    std::vector<std::wstring> names;
    for (const auto& file : folder_.Files())
        names.push_back(file.first);
    EXPECT_THAT(names, testing::UnorderedElementsAre(L"Data\\file", L"Data\\old0", L"bold",
                                                     L"old folder\\inside"));
}

TEST_F(PipelineTest, DoesNothingWithoutAFolder) {
    PatchPipeline unconfigured;
    unconfigured.Begin(false);
    EXPECT_EQ(unconfigured.Tick(), State::Boot);
    unconfigured.Configure(Platform::Utf8FromWide(TestServer::Http(L"")), L"");
    unconfigured.Begin(true);
    EXPECT_EQ(unconfigured.Tick(), State::Boot);
}

}  // namespace
}  // namespace Launcher
