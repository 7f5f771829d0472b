#include "common/boot_log.h"

#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <vector>

#include "common/path_text.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "support/test_files.h"

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

    std::string Content() const { return TestSupport::ReadText(path_); }

    /// What stands behind time and thread in each line.
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        std::istringstream lines(Content());
        for (std::string line; std::getline(lines, line);) {
            const std::size_t text = line.find("] ", line.find(" [tid ")) + 2;
            texts.push_back(line.substr(text, line.size() - text - 1));
        }
        return texts;
    }

    std::wstring path_ = JoinPath(FolderOf(Platform::OwnPath()), L"launcher_boot.log");
};

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
