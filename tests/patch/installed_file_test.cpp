#include "patch/installed_file.h"

#include <gtest/gtest.h>
#include <vector>

#include "patch/crc32.h"
#include "patch/file_wrapper.h"
#include "support/test_files.h"

namespace Launcher {
namespace {

std::uint32_t CrcOf(std::string_view text) {
    return Crc32Of(std::as_bytes(std::span(text)));
}

/// The payload in its wrapper.
std::string Wrapped(std::string_view payload) {
    const auto text = [](std::span<const std::byte> bytes) {
        return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    return text(MakeWrapperHeader(payload.size())) + std::string(payload) +
           text(MakeWrapperTrailer(CrcOf(payload)));
}

TEST(InstalledFile, IsHashedAsPlainOrWrappedFastOrFully) {
    const std::string payload(3'000, 'p');
    std::string damaged = Wrapped(payload);
    damaged[100] = '!';
    std::string damagedPayload = payload;
    damagedPayload[84] = '!';
    std::string misfit = Wrapped(payload) + "x";
    const struct {
        const char* what;
        std::string bytes;
        std::uint32_t trailerCrc;
        std::uint32_t contentCrc;
    } cases[] = {
        {"empty", "", 0, 0},
        {"one byte", "x", CrcOf("x"), CrcOf("x")},
        {"19 bytes with the magic", Wrapped("").substr(0, 19), CrcOf(Wrapped("").substr(0, 19)),
         CrcOf(Wrapped("").substr(0, 19))},
        {"wrapped nothing", Wrapped(""), 0, 0},
        {"wrapped", Wrapped(payload), CrcOf(payload), CrcOf(payload)},
        {"wrapped and damaged", damaged, CrcOf(payload), CrcOf(damagedPayload)},
        {"magic, but the sizes do not fit", misfit, CrcOf(misfit), CrcOf(misfit)},
        {"plain", payload, CrcOf(payload), CrcOf(payload)},
    };
    const std::wstring path = TestSupport::MakeTestFolder() + L"\\file";
    for (const auto& test : cases) {
        TestSupport::WriteText(path, test.bytes);
        // The first buffer holds the file whole, the second takes it in many pieces.
        for (const std::size_t bufferSize : {65'536U, 7U}) {
            std::vector<std::byte> buffer(bufferSize);
            const auto hash = [&](HashDepth depth) {
                return HashInstalledFile(path, depth, {}, buffer);
            };
            const auto fast = hash(HashDepth::Trailer);
            const auto full = hash(HashDepth::Content);
            ASSERT_TRUE(fast && full) << test.what;
            EXPECT_EQ(fast->crc, test.trailerCrc) << test.what;
            EXPECT_EQ(full->crc, test.contentCrc) << test.what;
            EXPECT_EQ(fast->size, test.bytes.size()) << test.what;
            EXPECT_EQ(full->size, test.bytes.size()) << test.what;
        }
    }
}

}  // namespace
}  // namespace Launcher
