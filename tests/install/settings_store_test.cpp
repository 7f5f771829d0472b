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

    static void WriteRaw(const RegistryRecord& record, const wchar_t* name,
                         Platform::RegistryType type, const std::vector<unsigned char>& data) {
        Platform::RegistryKey key;
        ASSERT_EQ(key.Create(record.Path()), Platform::Error::None);
        ASSERT_EQ(key.Write(name, type, std::as_bytes(std::span(data))), Platform::Error::None);
    }

    static bool Has(const RegistryRecord& record, const wchar_t* name) {
        return record.ReadDword(name, 7) != 7 || record.ReadDword(name, 9) != 9;
    }

    std::vector<Step> steps_;
    Install::Steps report_ = [this](Step step) { steps_.push_back(step); };
};

TEST_F(SettingsStoreTest, CleanMachineHasTheReadDefaults) {
    const LauncherSettings settings = LoadSettings();
    EXPECT_EQ(settings.clientArch, 0U);
    EXPECT_EQ(settings.screenWidth, 1024U);
    EXPECT_EQ(settings.screenHeight, 768U);
    EXPECT_EQ(settings.windowMode, 0U);
    EXPECT_FALSE(settings.closeAfterStart);
    EXPECT_TRUE(settings.seasoning);
    EXPECT_EQ(settings.musicVolume, 55U);
    EXPECT_EQ(settings.soundVolume, 70U);
    EXPECT_EQ(GetLanguage(), -1);
    EXPECT_EQ(GetInstallLocation(), L"");
    EXPECT_EQ(GetInstallDate(), L"");
    EXPECT_EQ(GetInstalledBytes(), 0U);
    EXPECT_EQ(GetLastInstallPath(), L"");
}

TEST_F(SettingsStoreTest, InstallWritesItsOwnDefaultsOverWhateverStood) {
    g_settingsKey.WriteDword(L"MUSIC_VOLUME", 12);
    g_launcherKey.WriteDword(L"CloseAfterStart", 1);
    ASSERT_TRUE(WriteGameDefaults(5, report_));

    constexpr struct {
        const wchar_t* name;
        std::uint32_t value;
    } Expected[] = {
        {L"BRIGHTNESS", 100},    {L"CONTRAST", 100},   {L"LANGUAGE", 5},
        {L"MUSIC_VOLUME", 75},   {L"SATURATION", 100}, {L"SCREEN_HEIGHT", 768},
        {L"SCREEN_WIDTH", 1024}, {L"SEASONING", 0},    {L"SOUND_VOLUME", 75},
        {L"TINT_B", 255},        {L"TINT_G", 255},     {L"TINT_R", 255},
        {L"TINT_STRENGTH", 100}, {L"WINDOW_MODE", 1},
    };
    for (const auto& entry : Expected) {
        EXPECT_EQ(GetSetting(entry.name, 4711), entry.value) << entry.name;
    }
    EXPECT_EQ(g_launcherKey.ReadDword(L"ClientArch", 4711), 0U);
    EXPECT_EQ(g_launcherKey.ReadDword(L"CloseAfterStart", 4711), 0U);

    const LauncherSettings settings = LoadSettings();
    EXPECT_EQ(settings.windowMode, 1U);
    EXPECT_EQ(settings.musicVolume, 75U);
    EXPECT_EQ(settings.soundVolume, 75U);
    EXPECT_FALSE(settings.seasoning);
    EXPECT_EQ(GetLanguage(), 5);
    EXPECT_THAT(steps_, ElementsAre(Step::OpenSettings, Step::WriteDefaults, Step::StoreLanguage));
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
    const LauncherSettings settings = LoadSettings();
    EXPECT_EQ(settings.clientArch, 1U);
    EXPECT_EQ(settings.screenWidth, 1920U);
    EXPECT_EQ(settings.screenHeight, 1080U);
    EXPECT_EQ(settings.windowMode, 2U);
    EXPECT_TRUE(settings.closeAfterStart);
    EXPECT_FALSE(settings.seasoning);
    EXPECT_EQ(settings.musicVolume, 0U);
    EXPECT_EQ(settings.soundVolume, 100U);
    // The launcher's two lie in its own key, the rest in the game's.
    EXPECT_EQ(g_launcherKey.ReadDword(L"CloseAfterStart", 4711), 1U);
    EXPECT_FALSE(Has(g_settingsKey, L"CloseAfterStart"));
    EXPECT_EQ(GetSetting(L"SEASONING", 4711), 0U);
}

TEST_F(SettingsStoreTest, AnyNumberButZeroIsTrue) {
    g_launcherKey.WriteDword(L"CloseAfterStart", 0x100);
    SetSetting(L"SEASONING", 2);
    EXPECT_TRUE(LoadSettings().closeAfterStart);
    EXPECT_TRUE(LoadSettings().seasoning);
}

TEST_F(SettingsStoreTest, SeedingFillsOnlyWhatIsMissing) {
    SeedLauncherValues();
    EXPECT_EQ(g_launcherKey.ReadDword(L"ClientArch", 4711), 0U);
    EXPECT_EQ(g_launcherKey.ReadDword(L"CloseAfterStart", 4711), 0U);
    // The two numbers that the look for absence uses are values like any other.
    for (const std::uint32_t value : {7U, 9U, 1U}) {
        g_launcherKey.WriteDword(L"ClientArch", value);
        g_launcherKey.WriteDword(L"CloseAfterStart", value);
        SeedLauncherValues();
        EXPECT_EQ(g_launcherKey.ReadDword(L"ClientArch", 4711), value);
        EXPECT_EQ(g_launcherKey.ReadDword(L"CloseAfterStart", 4711), value);
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
        {RegistryType::String, {'a', 0, 0, 0, 0, 0, 0, 0}, 0x00000061, L"a"},
        {RegistryType::String, {'a', 0, 'b', 0}, 0x00620061, L"ab"},
        {RegistryType::String, {0, 0}, 0xAABB0000, L""},
        {RegistryType::String, {}, 0xAABBCCDD, L"none"},
    };
    for (const auto& entry : cases) {
        WriteRaw(g_uninstallKey, L"Odd", entry.type, entry.data);
        EXPECT_EQ(g_uninstallKey.ReadDword(L"Odd", 0xAABBCCDD), entry.number);
        EXPECT_EQ(g_uninstallKey.ReadString(L"Odd", L"none"), entry.text);
    }
}

class UninstallEntryTest : public SettingsStoreTest {
protected:
    static std::wstring Text(const wchar_t* name) { return g_uninstallKey.ReadString(name, L"?"); }
    static std::uint32_t Number(const wchar_t* name) {
        return g_uninstallKey.ReadDword(name, 4711);
    }
};

TEST_F(UninstallEntryTest, SizeLosesWhatIsAboveFourTebibytes) {
    constexpr std::uint64_t Kibibyte = 1024;
    constexpr std::uint64_t Tebibyte = Kibibyte * Kibibyte * Kibibyte * Kibibyte;
    ASSERT_TRUE(WriteUninstallEntry(Folder, 4 * Tebibyte + 3 * Kibibyte, {}));
    EXPECT_EQ(GetInstalledBytes(), 3 * Kibibyte);
    ASSERT_TRUE(WriteUninstallEntry(Folder, 0, {}));
    EXPECT_EQ(GetInstalledBytes(), 0U);
}

TEST_F(UninstallEntryTest, RefreshKeepsWhatDoesNotDependOnTheFolder) {
    ASSERT_TRUE(WriteUninstallEntry(Folder, 1, {}));
    g_uninstallKey.WriteString(L"InstallDate", L"20200229");
    const std::wstring moved = std::wstring(Folder) + L" moved";
    RefreshUninstallEntry(moved);
    EXPECT_EQ(Text(L"InstallLocation"), moved);
    EXPECT_EQ(Text(L"UninstallString"), L"\"" + moved + L"\\Tolvan Online.exe\" --uninstall");
    EXPECT_EQ(Text(L"DisplayName"), L"Tolvan Online");
    EXPECT_EQ(GetInstallDate(), L"20200229");
    EXPECT_EQ(GetLastInstallPath(), moved);
    // The launcher that was just placed is the folder's whole content.
    Platform::FileInfo launcher;
    ASSERT_EQ(Platform::GetFileInfo(moved + L"\\Tolvan Online.exe", launcher),
              Platform::Error::None);
    EXPECT_EQ(Number(L"EstimatedSize"), launcher.size / 1024);
}

TEST_F(UninstallEntryTest, LocationIsNormalisedBothWays) {
    SetInstallLocation(L"C:/Games//Tolvan Online/");
    EXPECT_EQ(Text(L"InstallLocation"), L"C:\\Games\\Tolvan Online");
    g_uninstallKey.WriteString(L"InstallLocation", L"D:\\Games\\\\Tolvan\\");
    EXPECT_EQ(GetInstallLocation(), L"D:\\Games\\Tolvan");
    // Only the location is written.
    EXPECT_EQ(Text(L"UninstallString"), L"?");
}

}  // namespace
}  // namespace Launcher
