#include "platform/host/host_path.h"

#include <gtest/gtest.h>

#include "platform/paths.h"
#include "platform/text.h"
#include "support/scratch.h"

namespace Platform::Host {
namespace {

TEST(HostPath, MapsWindowsPaths) {
    ASSERT_EQ(ChangeCurrentFolder(L"C:\\Users\\Player"), Error::None);
    const struct {
        std::wstring path;
        const char* text;
    } cases[] = {
        {L"C:\\", "drive_c"},
        {L"c:/Games//x.dat", "drive_c/Games/x.dat"},
        {L"Z:\\a\\.\\b\\..\\c", "drive_z/a/c"},
        {L"C:\\..\\..\\x", "drive_c/x"},
        {L"C:\\a\\..\\..\\..\\D:", nullptr},
        {L"C:\\x. . ", "drive_c/x"},
        {L"C:\\dir.\\x", "drive_c/dir/x"},
        {L"C:\\...\\x", nullptr},
        {L"C:\\a\\...", "drive_c/a"},
        {L"\\Windows", "drive_c/Windows"},
        {L"x", "drive_c/Users/Player/x"},
        {L"..\\x", "drive_c/Users/x"},
        {L"C:x", "drive_c/Users/Player/x"},
        {L"D:x", "drive_d/x"},
        {L"\\\\?\\C:\\x.", "drive_c/x."},
        {L"\\\\?\\C:\\x\\", "drive_c/x"},
        {L"\\\\?\\C:\\a\\..\\b", nullptr},
        {L"\\\\?\\C:\\a/b", nullptr},
        {L"\\\\?\\x", nullptr},
        {L"\\\\.\\C:\\a\\..\\b", "drive_c/b"},
        {L"C:\\a|b", nullptr},
        {L"C:\\a\tb", nullptr},
        {L"C:\\stream:name", nullptr},
        {L"C:\\\U0001F3AE", "drive_c/\xf0\x9f\x8e\xae"},
        {std::wstring(L"C:\\") + static_cast<wchar_t>(0xD800), nullptr},
        {std::wstring(L"C:\\a") + L'\0' + L"b", nullptr},
    };
    for (const auto& each : cases) {
        HostPath parsed;
        const Error error = ParsePath(each.path, parsed);
        if (each.text == nullptr) {
            EXPECT_EQ(error, Error::InvalidName) << Utf8FromWide(each.path);
        } else {
            EXPECT_EQ(error, Error::None) << Utf8FromWide(each.path);
            EXPECT_EQ(parsed.text, each.text);
        }
    }
    HostPath parsed;
    EXPECT_EQ(ParsePath(L"\\\\server\\share\\x", parsed), Error::BadNetworkPath);
    EXPECT_EQ(ParsePath(L"\\\\?\\UNC\\server\\share\\x", parsed), Error::BadNetworkPath);
    ASSERT_EQ(ChangeCurrentFolder(L"C:\\"), Error::None);
}

}  // namespace
}  // namespace Platform::Host
