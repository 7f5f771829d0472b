#include "patch/fetch_job.h"

#include <gtest/gtest.h>
#include <vector>

namespace Launcher {
namespace {

TEST(FetchJob, NamesWhatItFetchesAndWhereItGoes) {
    const auto jobFor = [](std::wstring path) {
        return MakeFetchJob("https://host/base/", L"C:\\Game\\", {std::move(path), "7", 30}, true);
    };
    const struct {
        std::wstring path;
        std::wstring url;
        std::wstring finalPath;
    } cases[] = {
        {L"Data/a/b.txt", L"a/b.txt", L"C:\\Game\\Data\\a\\b.txt"},
        {L"Data/a b.txt", L"a%20b.txt", L"C:\\Game\\Data\\a b.txt"},
        {L"Data/x/Data/y", L"x/Data/y", L"C:\\Game\\Data\\x\\Data\\y"},
        {L"Data/Data/y", L"Data/y", L"C:\\Game\\Data\\Data\\y"},
        {L"Data/\u00E4%", L"%C3%A4%25", L"C:\\Game\\Data\\\u00E4%"},
    };
    for (const auto& [path, url, finalPath] : cases) {
        const auto job = jobFor(path);
        ASSERT_TRUE(job);
        EXPECT_EQ(job->url, L"https://host/base/patcher/get/" + url);
        EXPECT_EQ(job->finalPath, finalPath);
        EXPECT_EQ(job->partPath, finalPath + L".part");
        EXPECT_EQ(job->expectedHash, "7");
        EXPECT_EQ(job->expectedSize, 30U);
        EXPECT_TRUE(job->replaceExisting);
    }
    EXPECT_FALSE(jobFor(L"Data/../../x"));
}

TEST(PayloadCrc, CoversWhatStandsBetweenHeaderAndTrailer) {
    std::vector<std::byte> file(1000);
    for (std::size_t i = 0; i < file.size(); ++i)
        file[i] = static_cast<std::byte>(i * 7);
    for (const std::uint32_t listed : {0U, 16U, 19U, 20U, 21U, 22U, 36U, 999U, 1000U, 1010U}) {
        const std::size_t end = listed < 21 ? 16 : std::min<std::size_t>(listed - 4, file.size());
        const std::uint32_t expected = Crc32Of(std::span(file).subspan(16, end - 16));
        for (const std::size_t blockSize : {1U, 3U, 15U, 16U, 17U, 64U, 1000U}) {
            PayloadCrc crc(listed);
            for (std::span<const std::byte> rest = file; !rest.empty();) {
                const std::size_t count = std::min(blockSize, rest.size());
                crc.Update(rest.first(count));
                rest = rest.subspan(count);
            }
            EXPECT_EQ(crc.Value(), expected) << listed << " in blocks of " << blockSize;
        }
    }
}

}  // namespace
}  // namespace Launcher
