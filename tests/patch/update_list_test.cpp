#include "patch/update_list.h"

#include <gtest/gtest.h>

#include "patch/comparison.h"

namespace Launcher {
namespace {

TEST(UpdateList, LinesAreReadAsTheServerMeansThem) {
    const struct {
        std::string_view line;
        std::wstring_view path;  ///< empty: the line tells of no file
        std::string_view hash;
        std::uint32_t size;
    } cases[] = {
        {"a/b.dat=123\t456", L"Data/a/b.dat", "123", 456},
        {"a=1\t2\r", L"Data/a", "1", 2},
        {"a=1\t2  \r\n", L"Data/a", "1", 2},
        {"\r\n\na=1\t2", L"Data/a", "1", 2},
        {"  a b=1\t2", L"Data/  a b", "1", 2},  // blanks at the beginning stay
        {"\ta=1\t2\t", L"Data/\ta", "1", 2},    // and tabs anywhere
        {"a=1", L"Data/a", "1", 0},             // no size
        {"=5\t9", L"Data/", "5", 9},            // no name
        {"a=\t7", L"Data/a", "", 7},            // no hash
        {"a=b=c\t1", L"Data/a", "b=c", 1},      // the first "=" counts
        {"a\tb=1\t2", L"Data/a\tb", "1", 2},    // and the first tab behind it
        {"a=1\t2x9", L"Data/a", "1", 2},
        {"a=1\t 2", L"Data/a", "1", 0},
        {"a=1\t-2", L"Data/a", "1", 0},
        {"a=1\t4294967295", L"Data/a", "1", 4294967295},
        {"a=1\t4294967296", L"Data/a", "1", 4294967295},
        {"a=1\t99999999999999999999999999", L"Data/a", "1", 4294967295},
        {"\xEF\xBB\xBF"
         "a=1\t2",
         L"Data/\uFEFFa", "1", 2},  // a byte order mark spoils the first name
        {"\xC3\xA4/\xD0\x96=1\t2", L"Data/\u00E4/\u0416", "1", 2},
        {"\xFF=1\t2", L"Data/\uFFFD", "1", 2},
        {"../../x=1\t2", L"Data/../../x", "1", 2},  // names are judged when they would be written
        {"Deleted:a=1\t2", L"Data/Deleted:a", "1", 2},
        {"", L"", "", 0},
        {"\r\n \r\n", L"", "", 0},
        {"no equals sign", L"", "", 0},
        {"nothing behind= \r\n", L"", "", 0},
        {"deleted:", L"", "", 0},
        {"deleted:a=1\t2", L"", "", 0},
    };
    for (const auto& [line, path, hash, size] : cases) {
        const auto entry = ParseLine(line);
        ASSERT_EQ(entry.has_value(), !path.empty()) << line;
        if (!entry) continue;
        EXPECT_EQ(entry->path, path) << line;
        EXPECT_EQ(entry->hash, hash) << line;
        EXPECT_EQ(entry->size, size) << line;
    }
}

TEST(UpdateList, KeysIgnoreCaseAndSeparators) {
    EXPECT_EQ(NormalizedKey(L"Data\\Sub/File.DAT"), L"data/sub/file.dat");
    EXPECT_EQ(NormalizedKey(L"\u00C4\u0416"), L"\u00E4\u0436");
}

TEST(CompareLists, QueuesWhatIsMissingOrDiffersInHashOrSize) {
    const std::vector<ManifestEntry> remote{
        {L"Data/current", "17", 100}, {L"Data/missing", "17", 200}, {L"Data/hash", "18", 300},
        {L"Data/size", "17", 401},    {L"Data/zeros", "017", 500},  {L"Data/no hash", "", 600},
        {L"Data/huge", "17", 5},      {L"Data/empty file", "0", 0},
    };
    const std::vector<std::optional<InstalledFile>> local{
        InstalledFile{17, 100},           std::nullopt,           InstalledFile{17, 300},
        InstalledFile{17, 400},           InstalledFile{17, 500}, InstalledFile{17, 600},
        InstalledFile{17, 0x1'0000'0005}, InstalledFile{0, 0},
    };
    const Comparison comparison = CompareLists(remote, local);
    EXPECT_EQ(comparison.queue, (std::vector<std::uint32_t>{1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(comparison.bytesTotal, 200U + 300 + 401 + 500 + 600 + 5);
}

}  // namespace
}  // namespace Launcher
