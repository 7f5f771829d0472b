#include "common/boot_log.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <vector>

#include "common/path_text.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace Launcher {
namespace {

using testing::ElementsAre;

constexpr Platform::OpenOptions Writing{.access = Platform::AccessWrite,
                                        .sharing = Platform::ShareRead,
                                        .disposition = Platform::Disposition::CreateAlways};

class BootLogTest : public testing::Test {
protected:
    void SetUp() override {
        (void)Platform::MakeFolderPath(FolderOf(path_));
        (void)Platform::RemoveFile(path_);
        StartBootLog();
    }

    void TearDown() override {
        CloseBootLog();
        (void)Platform::RemoveFile(path_);
    }

    std::string Content() const {
        Platform::File file;
        std::uint64_t size = 0;
        if (!Platform::Succeeded(file.Open(path_, {})) ||
            !Platform::Succeeded(file.GetSize(size))) {
            return "(no file)";
        }
        std::string content(size, '\0');
        std::size_t got = 0;
        (void)file.ReadAt(0, std::as_writable_bytes(std::span(content)), got);
        EXPECT_EQ(got, size);
        return content;
    }

    /// What stands behind time and thread in each line.
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        std::istringstream lines(Content());
        for (std::string line; std::getline(lines, line);) {
            unsigned long long time = 0;
            unsigned long thread = 0;
            int header = 0;
            EXPECT_EQ(std::sscanf(line.c_str(), "[%llu ms] [tid %lu] %n", &time, &thread, &header),
                      2)
                << line;
            EXPECT_GE(line.find(" ms] [tid "), 7U) << line;  // the time takes six places or more
            EXPECT_TRUE(line.ends_with('\r')) << line;
            texts.push_back(line.substr(header, line.size() - header - 1));
        }
        return texts;
    }

    std::wstring path_ = JoinPath(FolderOf(Platform::OwnPath()), L"launcher_boot.log");
};

TEST_F(BootLogTest, WritesTimeThreadAndText) {
    OpenBootLog();
    BootLog("wWinMain: enter");
    BootLogF("%s: %d files -- %llu bytes", "compare", 3, 5'000'000'000ULL);
    EXPECT_THAT(Texts(), ElementsAre("wWinMain: enter", "compare: 3 files -- 5000000000 bytes"));
    const std::string thread = std::to_string(Platform::CurrentThreadId());
    EXPECT_NE(Content().find("[tid " + thread + "] wWinMain"), std::string::npos);
}

TEST_F(BootLogTest, CutsLongTextsAndKeepsTheLineEnd) {
    OpenBootLog();
    for (const std::size_t length : {400U, 490U, 511U, 512U, 100000U}) {
        BootLog(std::string(length, 'x'));
        BootLogF("%s", std::string(length, 'y').c_str());
    }
    std::istringstream lines(Content());
    std::size_t count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_LE(line.size() + 1, 511U);
        EXPECT_TRUE(line.ends_with("\r"));
        if (count >= 4) {
            EXPECT_EQ(line.size() + 1, 511U);
        }
    }
    EXPECT_EQ(count, 10U);
}

TEST_F(BootLogTest, KeepsLinesUntilItIsOpened) {
    Platform::File earlier;
    ASSERT_EQ(earlier.Open(path_, Writing), Platform::Error::None);
    ASSERT_EQ(earlier.Write(std::as_bytes(std::span("of an earlier run"))), Platform::Error::None);
    earlier.Close();

    BootLog("first");
    EXPECT_TRUE(Content().starts_with("of an earlier run"));
    OpenBootLog();
    BootLog("second");
    EXPECT_THAT(Texts(), ElementsAre("first", "second"));
}

TEST_F(BootLogTest, LeavesTheFileAloneWhenItIsNeverOpened) {
    BootLog("another launcher is running");
    CloseBootLog();
    EXPECT_FALSE(Platform::PathExists(path_));
}

TEST_F(BootLogTest, WaitsForTheFileOfAReplacedProcess) {
    Platform::File held;
    ASSERT_EQ(held.Open(path_, Writing), Platform::Error::None);
    BootLog("first");
    OpenBootLogWhenFree();
    BootLog("second");
    EXPECT_EQ(Content(), "");
    held.Close();
    BootLog("third");
    BootLog("fourth");
    EXPECT_THAT(Texts(), ElementsAre("first", "second", "third", "fourth"));
}

TEST_F(BootLogTest, WritesKeptLinesAtTheLatestWhenItCloses) {
    Platform::File held;
    ASSERT_EQ(held.Open(path_, Writing), Platform::Error::None);
    OpenBootLogWhenFree();
    BootLog("kept");
    held.Close();
    CloseBootLog();
    EXPECT_THAT(Texts(), ElementsAre("kept"));
}

TEST_F(BootLogTest, GivesUpAFileThatAnUnrelatedProcessHolds) {
    Platform::File held;
    ASSERT_EQ(held.Open(path_, Writing), Platform::Error::None);
    OpenBootLog();
    held.Close();
    BootLog("would empty the other's log");
    EXPECT_EQ(Content(), "");
}

TEST_F(BootLogTest, StandsInTheOrderOfItsTimesWhateverThreadWrites) {
    constexpr int Threads = 4;
    constexpr int LinesEach = 40;
    OpenBootLog();
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < Threads; ++thread) {
            threads.emplace_back([thread] {
                for (int line = 0; line < LinesEach; ++line)
                    BootLogF("%d %d", thread, line);
            });
        }
    }
    std::vector<unsigned long> times;
    std::istringstream lines(Content());
    for (std::string line; std::getline(lines, line);) {
        times.push_back(std::strtoul(line.c_str() + 1, nullptr, 10));
    }
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));

    std::vector<std::string> texts = Texts();
    EXPECT_EQ(texts.size(), std::size_t{Threads * LinesEach});
    std::sort(texts.begin(), texts.end());
    EXPECT_EQ(std::unique(texts.begin(), texts.end()), texts.end());
}

}  // namespace
}  // namespace Launcher
