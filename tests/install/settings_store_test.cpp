#include "install/settings_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vector>

#include "platform/files.h"
#include "platform/registry.h"

namespace Launcher {
namespace {

using Install::Step;
using testing::ElementsAre;

constexpr const wchar_t* Folder = L"C:\\Settings test\\Tolvan Online";

class SettingsStoreTest : public testing::Test {
protected:
    void SetUp() override { CleanUp(); }
    void TearDown() override { CleanUp(); }

    static void CleanUp() {
        (void)Platform::RemoveRegistryTree(L"Software\\TolvanOnline");
        (void)Platform::RemoveRegistryTree(g_uninstallKey.Path());
    }

    static std::wstring Text(const wchar_t* name) { return g_uninstallKey.ReadString(name, L"?"); }
};

TEST_F(SettingsStoreTest, InstallWritesItsOwnDefaultsOverWhateverStood) {
    EXPECT_EQ(GetLanguage(), -1);
    EXPECT_TRUE(LoadSettings().seasoning) << "what holds for a missing value is another one";
    g_settingsKey.WriteDword(L"MUSIC_VOLUME", 12);
    g_launcherKey.WriteDword(L"CloseAfterStart", 1);
    std::vector<Step> steps;
    ASSERT_TRUE(WriteGameDefaults(5, [&](Step step) { steps.push_back(step); }));
    const LauncherSettings settings = LoadSettings();
    EXPECT_EQ(settings.windowMode, 1U);
    EXPECT_EQ(settings.musicVolume, 75U);
    EXPECT_FALSE(settings.seasoning);
    EXPECT_FALSE(settings.closeAfterStart);
    EXPECT_EQ(GetSetting(L"TINT_STRENGTH", 4711), 100U);
    EXPECT_EQ(GetLanguage(), 5);
    EXPECT_THAT(steps, ElementsAre(Step::OpenSettings, Step::WriteDefaults, Step::StoreLanguage));
}

TEST_F(SettingsStoreTest, SavedSettingsComeBack) {
    SaveSettings({.clientArch = 1,
                  .screenWidth = 1920,
                  .screenHeight = 1080,
                  .windowMode = 2,
                  .closeAfterStart = true,
                  .seasoning = false,
                  .musicVolume = 0,
                  .soundVolume = 100});
    const auto [arch, width, height, mode, closes, seasoning, music, sound] = LoadSettings();
    EXPECT_THAT((std::vector{arch, width, height, mode, music, sound}),
                ElementsAre(1U, 1920U, 1080U, 2U, 0U, 100U));
    EXPECT_TRUE(closes);
    EXPECT_FALSE(seasoning);
    // The launcher's two lie in its own key, the rest in the game's.
    EXPECT_EQ(g_launcherKey.ReadDword(L"CloseAfterStart", 4711), 1U);
    EXPECT_EQ(GetSetting(L"CloseAfterStart", 4711), 4711U);
}

TEST_F(SettingsStoreTest, SeedingFillsOnlyWhatIsMissing) {
    SeedLauncherValues();
    EXPECT_EQ(g_launcherKey.ReadDword(L"ClientArch", 4711), 0U);
    // The two numbers that the look for absence uses are values like any other.
    for (const std::uint32_t value : {7U, 9U, 1U}) {
        g_launcherKey.WriteDword(L"ClientArch", value);
        SeedLauncherValues();
        EXPECT_EQ(g_launcherKey.ReadDword(L"ClientArch", 4711), value);
    }
}

TEST_F(SettingsStoreTest, WrongTypes) {
    using Platform::RegistryType;
    const struct {
        RegistryType type;
        std::vector<unsigned char> data;
        std::uint32_t number;  // with the default 0xAABBCCDD
        std::wstring text;     // with the default "none"
    } cases[] = {
        {RegistryType::Dword, {1, 2, 3, 4}, 0x04030201, L"none"},
        {RegistryType::Binary, {1, 2, 3, 4, 5, 6}, 0x04030201, L"none"},
        {RegistryType::Binary, {0x11}, 0xAABBCC11, L"none"},
        {RegistryType::Binary, {}, 0xAABBCCDD, L"none"},
        {RegistryType::String, {'a', 0, 'b', 0, 0, 0}, 0x00620061, L"ab"},
        {RegistryType::String, {'a', 0, 'b', 0}, 0x00620061, L"ab"},
        {RegistryType::String, {0, 0}, 0xAABB0000, L""},
        {RegistryType::String, {}, 0xAABBCCDD, L"none"},
    };
    Platform::RegistryKey key;
    ASSERT_EQ(key.Create(g_uninstallKey.Path()), Platform::Error::None);
    for (const auto& entry : cases) {
        ASSERT_EQ(key.Write(L"Odd", entry.type, std::as_bytes(std::span(entry.data))),
                  Platform::Error::None);
        EXPECT_EQ(g_uninstallKey.ReadDword(L"Odd", 0xAABBCCDD), entry.number);
        EXPECT_EQ(g_uninstallKey.ReadString(L"Odd", L"none"), entry.text);
    }
}

TEST_F(SettingsStoreTest, RefreshKeepsWhatDoesNotDependOnTheFolder) {
    ASSERT_TRUE(WriteUninstallEntry(Folder, 1, {}));
    g_uninstallKey.WriteString(L"InstallDate", L"20200229");
    const std::wstring moved = std::wstring(Folder) + L" moved";
    RefreshUninstallEntry(moved);
    EXPECT_EQ(Text(L"InstallLocation"), moved);
    EXPECT_EQ(Text(L"DisplayName"), L"Tolvan Online");
    EXPECT_EQ(GetInstallDate(), L"20200229");
    // The launcher that was just placed is the folder's whole content.
    Platform::FileInfo launcher;
    ASSERT_EQ(Platform::GetFileInfo(moved + L"\\Tolvan Online.exe", launcher),
              Platform::Error::None);
    EXPECT_EQ(GetInstalledBytes(), launcher.size / 1024 * 1024);
}

TEST_F(SettingsStoreTest, LocationIsNormalisedBothWays) {
    SetInstallLocation(L"C:/Games//Tolvan Online/");
    EXPECT_EQ(Text(L"InstallLocation"), L"C:\\Games\\Tolvan Online");
    g_uninstallKey.WriteString(L"InstallLocation", L"D:\\Games\\\\Tolvan\\");
    EXPECT_EQ(GetInstallLocation(), L"D:\\Games\\Tolvan");
    // Only the location is written.
    EXPECT_EQ(Text(L"UninstallString"), L"?");
}

}  // namespace
}  // namespace Launcher
