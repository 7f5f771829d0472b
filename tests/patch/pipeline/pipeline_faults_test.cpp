#include <gmock/gmock.h>

#include "patch/pipeline/pipeline_fixture.h"
#include "platform/files.h"
#include "platform/text.h"

/// What a patch pass makes of servers and disks that do not do their part.
namespace Launcher {
namespace {

using testing::IsEmpty;

constexpr const wchar_t* FileError = L"A file could not be downloaded or did not verify: ";

TEST_F(PipelineTest, TellsWhatIsWrongWithTheList) {
    Publish("file", "payload");
    folder_.Write(L"Data\\file", "old");
    const struct {
        const char* rule;
        State state;
        const wchar_t* text;
    } cases[] = {
        {"@http=refuse", State::ErrDownload, L"The update list could not be downloaded."},
        {"scripts/index.txt=empty", State::ErrFatal, L"The update list came back empty."},
        {"scripts/index.txt=cut:3", State::ErrFatal,
         L"The update list was empty or could not be read."},
        {"scripts/index.txt=status:500,body:Sorry", State::ErrFatal,
         L"The update list was empty or could not be read."},
        {"scripts/index.txt=html", State::ErrFatal,
         L"The update list was empty or could not be read."},
    };
    for (const auto& [rule, state, text] : cases) {
        const TestServer::Misbehaviour misbehaviour(rule);
        TestServer::DropConnections();
        EXPECT_EQ(Run().back(), state) << rule;
        EXPECT_EQ(Progress().errorText, text) << rule;
        EXPECT_THAT(Fetched(), IsEmpty()) << rule;
    }
    EXPECT_EQ(folder_.Files(), (std::map<std::wstring, std::string>{{L"Data\\file", "old"}}));
    EXPECT_EQ(Run().back(), State::Ready);
}

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

TEST_F(PipelineTest, TheFirstFailureEndsThePassAndTheNextGoesOnThere) {
    for (const char* name : {"a", "b", "c"})
        Publish(name, name);
    {
        const TestServer::Misbehaviour misbehaviour("patcher/get/b=status:404");
        EXPECT_EQ(Run().back(), State::ErrDownload);
        EXPECT_THAT(Fetched(), testing::ElementsAre("a", "b"));
    }
    EXPECT_EQ(Run().back(), State::Ready);
    EXPECT_THAT(Fetched(), testing::ElementsAre("b", "c"));
}

TEST_F(PipelineTest, SeesAFileThatWasReplacedAfterTheList) {
    Publish("file", "as listed");
    Begin();
    Serve("patcher/get/file", Wrapped("published!"));
    EXPECT_EQ(Finish().back(), State::ErrDownload);
    EXPECT_THAT(folder_.Files(), IsEmpty());
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

TEST_F(PipelineTest, NeverWritesOutsideTheFolder) {
    const std::wstring game = folder_.Path(L"game\\");
    ASSERT_EQ(Platform::MakeFolderPath(game + L"Data"), Platform::Error::None);
    pipeline_.Configure(Platform::Utf8FromWide(TestServer::Http(L"")), game);
    for (const std::string name : {"../../evil",
                                   "..\\..\\evil",
                                   "x/../../../evil",
                                   "/../../evil",
                                   ".. /.. /.. /evil",
                                   "C:/evil",
                                   "C:\\evil",
                                   "C:evil",
                                   "evil:stream",
                                   "evil::$DATA",
                                   "NUL",
                                   "nul.txt",
                                   "sub/COM1",
                                   "CONOUT$",
                                   "evil.",
                                   "evil ",
                                   "..",
                                   "",
                                   "sub/",
                                   "e?il",
                                   "e*il",
                                   "<evil>",
                                   "\\\\localhost\\c$\\evil|",
                                   "evil\x01"}) {
        ClearList();
        // Any 20 bytes would do for this line.
        List(name + "=0\t20");
        const TestServer::Misbehaviour generous("patcher/get*=body:12345678901234567890");
        EXPECT_EQ(Run().back(), State::ErrDownload) << name;
        EXPECT_EQ(Progress().errorText, FileError + (L"Data/" + Platform::WideFromUtf8(name)));
        EXPECT_THAT(Fetched(), IsEmpty()) << name;
        EXPECT_THAT(folder_.Files(), IsEmpty()) << name;
    }
    ClearList();
    List("x/.././y\\\\z=0\t20");
    const TestServer::Misbehaviour generous("patcher/get*=body:12345678901234567890");
    Run();
    EXPECT_EQ(folder_.Files().size(), 1U);
    EXPECT_TRUE(folder_.Read(L"game\\Data\\y\\z")) << "names that stay inside are written";
}

TEST_F(PipelineTest, ATargetThatCannotBeReplacedStays) {
    folder_.Write(L"Data\\held", "old");
    folder_.Write(L"Data\\folder\\inside", "kept");
    Publish("held", "new");
    Platform::File held;
    ASSERT_EQ(held.Open(folder_.Path(L"Data\\held"), {.sharing = Platform::ShareNone}),
              Platform::Error::None);
    EXPECT_EQ(Run().back(), State::ErrDownload);
    EXPECT_EQ(Progress().errorText, FileError + std::wstring(L"Data/held"));
    held.Close();

    ClearList();
    Publish("folder", "a file where a folder stands");
    EXPECT_EQ(Run().back(), State::ErrDownload);
    EXPECT_EQ(Progress().errorText, FileError + std::wstring(L"Data/folder"));

    ClearList();
    Publish(std::string(150, 'l') + "/" + std::string(150, 'p'), "deep");
    const State longPath = Run().back();
    EXPECT_TRUE(longPath == State::ErrDownload || longPath == State::Ready);

    EXPECT_EQ(folder_.Read(L"Data\\held"), "old");
    EXPECT_EQ(folder_.Read(L"Data\\folder\\inside"), "kept");
    for (const auto& file : folder_.Files())
        EXPECT_FALSE(file.first.ends_with(L".part"));
}

}  // namespace
}  // namespace Launcher
