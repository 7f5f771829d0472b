#include "patch/pipeline/pipeline_fixture.h"
#include "platform/files.h"

/// What a patch pass makes of servers and disks that do not do their part.
namespace Launcher {
namespace {

constexpr const wchar_t* FileError = L"A file could not be downloaded or did not verify: ";

TEST_F(PipelineTest, KeepsTheOldFileWhenTheNewOneIsWrong) {
    const std::string old = Wrapped("old payload");
    folder_.Write(L"Data\\folder\\file", old);
    Publish("folder/file", "new payload");
    for (const char* fault :
         {"status:404", "status:500", "redirect:/scripts/index.txt", "html", "empty", "cut:0",
          "cut:20", "cut:99%", "cut:20,reset", "no-length,cut:20", "short:1", "long:1", "flip:16",
          "flip:26", "chunked,cut:20", "endless", "junk:31"}) {
        const TestServer::Misbehaviour misbehaviour("patcher/get/folder/file=" +
                                                    std::string(fault));
        EXPECT_EQ(Run().back(), State::ErrDownload) << fault;
        EXPECT_EQ(Progress().errorText, std::wstring(FileError) + L"Data/folder/file") << fault;
        EXPECT_EQ(folder_.Files(),
                  (std::map<std::wstring, std::string>{{L"Data\\folder\\file", old}}))
            << fault;
    }
    EXPECT_EQ(Run().back(), State::Ready);
    EXPECT_EQ(folder_.Read(L"Data\\folder\\file"), Wrapped("new payload"));
}

TEST_F(PipelineTest, SeesAFileThatWasReplacedAfterTheList) {
    Publish("file", "as listed");
    Begin();
    Serve("patcher/get/file", Wrapped("published!"));
    EXPECT_EQ(Finish().back(), State::ErrDownload);
    EXPECT_TRUE(folder_.Files().empty());
}

TEST_F(PipelineTest, AStoredTrailerThatDiffersIsSeenWhenItIsReadBack) {
    Publish("file", "payload");
    std::string wrongTrailer = Wrapped("payload");
    wrongTrailer.back() ^= 1;
    Serve("patcher/get/file", wrongTrailer);
    EXPECT_EQ(Run().back(), State::ErrFatal);
    EXPECT_EQ(Progress().errorText, L"Some files still do not match after updating.");
}

TEST_F(PipelineTest, FilesBelowTheWrappersSizeAreListedWithZero) {
    Serve("patcher/get/any", std::string(20, 'x'));
    List("any=0\t20");
    // It verifies while it streams, but read back it is a plain file with a hash of its own.
    EXPECT_EQ(Run().back(), State::ErrFatal);
    EXPECT_EQ(folder_.Read(L"Data\\any"), std::string(20, 'x'));
}

TEST_F(PipelineTest, ATargetThatCannotBeReplacedStays) {
    folder_.Write(L"Data\\held", "old");
    Publish("held", "new");
    Platform::File held;
    ASSERT_EQ(held.Open(folder_.Path(L"Data\\held"), {.sharing = Platform::ShareNone}),
              Platform::Error::None);
    EXPECT_EQ(Run().back(), State::ErrDownload);
    EXPECT_EQ(Progress().errorText, FileError + std::wstring(L"Data/held"));
    held.Close();

    ClearList();
    Publish(std::string(150, 'l') + "/" + std::string(150, 'p'), "deep");
    const State longPath = Run().back();
    EXPECT_TRUE(longPath == State::ErrDownload || longPath == State::Ready);

    EXPECT_EQ(folder_.Read(L"Data\\held"), "old");
    for (const auto& file : folder_.Files())
        EXPECT_FALSE(file.first.ends_with(L".part"));
}

}  // namespace
}  // namespace Launcher
