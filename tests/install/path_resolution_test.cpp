#include "install/path_resolution.h"

#include <gtest/gtest.h>

namespace Launcher {
namespace {

TEST(ResolvePath, GivesEachPlaceOneForm) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"C:\\Games\\Tolvan", L"C:\\Games\\Tolvan"},
        {L"C:/Games//Tolvan/", L"C:\\Games\\Tolvan"},
        {L"C:\\Games\\.\\x\\..\\Tolvan", L"C:\\Games\\Tolvan"},
        {L"C:\\Games. \\Tolvan.", L"C:\\Games\\Tolvan"},
        {L"\\\\?\\C:\\Games", L"C:\\Games"},
        {L"\\\\?\\UNC\\server\\share\\x", L"\\\\server\\share\\x"},
        {L"\\\\server\\share\\x\\", L"\\\\server\\share\\x"},
        {L"C:\\", L"C:"},
        {L"C:\\..", L""},
        {L"C:\\a\\..\\..\\b", L""},
        {L"C:relative", L""},
        {L"relative", L""},
        {L"\\\\server", L""},
        {L"", L""},
    };
    for (const auto& [path, resolved] : cases)
        EXPECT_EQ(ResolvePath(path), resolved) << path;
}

TEST(SameOrInside, ComparesWholePartsWithoutCase) {
    EXPECT_TRUE(IsSameOrInside(L"c:\\games\\TOLVAN\\Data", L"C:\\Games\\Tolvan"));
    EXPECT_TRUE(IsSameOrInside(L"C:\\Games\\", L"C:\\Games"));
    EXPECT_TRUE(IsSameOrInside(L"C:\\Games", L"C:\\"));
    EXPECT_FALSE(IsSameOrInside(L"C:\\Games Two", L"C:\\Games"));
    EXPECT_FALSE(IsSameOrInside(L"C:\\", L"C:\\Games"));
    EXPECT_FALSE(IsSameOrInside(L"D:\\Games", L"C:\\Games"));
}

}  // namespace
}  // namespace Launcher
