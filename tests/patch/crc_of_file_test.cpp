#include <gtest/gtest.h>

#include "patch/crc32.h"
#include "patch/fetch.h"
#include "platform/files.h"
#include "support/test_files.h"

namespace {

using Launcher::CrcOfFile;

TEST(CrcOfFile, CoversTheWholeFile) {
    const std::wstring path = TestSupport::MakeTestFolder() + L"\\file";
    TestSupport::WriteText(path, "123456789");
    EXPECT_EQ(CrcOfFile(path), 0xCBF43926u);
    for (const std::size_t size : {1'048'575u, 1'048'576u, 1'048'577u, 3'000'000u}) {
        std::string text(size, '\0');
        for (std::size_t i = 0; i < size; ++i) {
            text[i] = static_cast<char>(i * 31 + (i >> 9));
        }
        TestSupport::WriteText(path, text);
        EXPECT_EQ(CrcOfFile(path), Launcher::Crc32Of(std::as_bytes(std::span(text)))) << size;
    }
}

TEST(CrcOfFile, IsZeroWithoutAFile) {
    const std::wstring folder = TestSupport::MakeTestFolder();
    EXPECT_EQ(CrcOfFile(folder + L"\\missing"), 0u);
    EXPECT_EQ(CrcOfFile(folder), 0u);
    TestSupport::WriteText(folder + L"\\empty", "");
    EXPECT_EQ(CrcOfFile(folder + L"\\empty"), 0u);

    TestSupport::WriteText(folder + L"\\held", "text");
    Platform::File held;
    ASSERT_EQ(held.Open(folder + L"\\held", {.sharing = Platform::ShareNone}),
              Platform::Error::None);
    EXPECT_EQ(CrcOfFile(folder + L"\\held"), 0u);
}

}  // namespace
