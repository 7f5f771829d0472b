#include "install/settings_store.h"

#include <array>
#include <cstdio>

#include "common/deployment.h"
#include "install/folder_tree.h"
#include "install/game_folder.h"
#include "install/path_rules.h"
#include "platform/clock.h"
#include "platform/registry.h"

namespace Launcher {

namespace {

void Report(const Install::Steps& steps, Install::Step step) {
    if (steps) steps(step);
}

bool OpenForWriting(const RegistryRecord& record, Platform::RegistryKey& key) {
    return Platform::Succeeded(key.Create(record.Path()));
}

// Single values that cannot be written go unnoticed: only the opening of a key is told.

void Write(Platform::RegistryKey& key, const wchar_t* name, std::uint32_t value) {
    (void)key.WriteDword(name, value);
}

void Write(Platform::RegistryKey& key, const wchar_t* name, const std::wstring& text) {
    (void)key.WriteString(name, text);
}

struct GameDefault {
    const wchar_t* name;
    std::uint32_t value;
};

constexpr const wchar_t* LanguageName = L"LANGUAGE";

// In the order in which they are written; the language's value is the player's choice.
constexpr GameDefault GameDefaults[] = {
    {L"BRIGHTNESS", 100},    {L"CONTRAST", 100},   {LanguageName, 0},
    {L"MUSIC_VOLUME", 75},   {L"SATURATION", 100}, {L"SCREEN_HEIGHT", 768},
    {L"SCREEN_WIDTH", 1024}, {L"SEASONING", 0},    {L"SOUND_VOLUME", 75},
    {L"TINT_B", 255},        {L"TINT_G", 255},     {L"TINT_R", 255},
    {L"TINT_STRENGTH", 100}, {L"WINDOW_MODE", 1},
};

constexpr const wchar_t* LauncherOptions[] = {L"ClientArch", L"CloseAfterStart"};

std::uint32_t KibibytesOf(std::uint64_t bytes) {
    return static_cast<std::uint32_t>(bytes >> 10);
}

std::wstring Today() {
    const Platform::LocalDate date = Platform::GetLocalDate();
    std::array<wchar_t, 32> text;
    std::swprintf(text.data(), text.size(), L"%04d%02d%02d", date.year, date.month, date.day);
    return text.data();
}

void WriteUninstallValues(Platform::RegistryKey& key, const std::wstring& folder,
                          const std::wstring& launcherPath) {
    Write(key, L"InstallLocation", folder);
    Write(key, L"DisplayIcon", launcherPath);
    Write(key, L"UninstallString", L"\"" + launcherPath + L"\" --uninstall");
    Write(key, L"HelpLink", Deployment::HelpLink());
}

bool IsMissing(const RegistryRecord& record, const wchar_t* name) {
    return record.ReadDword(name, 7) == 7 && record.ReadDword(name, 9) == 9;
}

}  // namespace

std::uint32_t GetSetting(const wchar_t* name, std::uint32_t fallback) {
    return g_settingsKey.ReadDword(name, fallback);
}

void SetSetting(const wchar_t* name, std::uint32_t value) {
    g_settingsKey.WriteDword(name, value);
}

std::int32_t GetLanguage() {
    return static_cast<std::int32_t>(GetSetting(LanguageName, static_cast<std::uint32_t>(-1)));
}

LauncherSettings LoadSettings() {
    const LauncherSettings missing;
    return {
        .clientArch = g_launcherKey.ReadDword(L"ClientArch", missing.clientArch),
        .screenWidth = GetSetting(L"SCREEN_WIDTH", missing.screenWidth),
        .screenHeight = GetSetting(L"SCREEN_HEIGHT", missing.screenHeight),
        .windowMode = GetSetting(L"WINDOW_MODE", missing.windowMode),
        .closeAfterStart =
            g_launcherKey.ReadDword(L"CloseAfterStart", missing.closeAfterStart) != 0,
        .seasoning = GetSetting(L"SEASONING", missing.seasoning) != 0,
        .musicVolume = GetSetting(L"MUSIC_VOLUME", missing.musicVolume),
        .soundVolume = GetSetting(L"SOUND_VOLUME", missing.soundVolume),
    };
}

void SaveSettings(const LauncherSettings& settings) {
    g_launcherKey.WriteDword(L"ClientArch", settings.clientArch);
    g_launcherKey.WriteBool(L"CloseAfterStart", settings.closeAfterStart);
    SetSetting(L"SCREEN_WIDTH", settings.screenWidth);
    SetSetting(L"SCREEN_HEIGHT", settings.screenHeight);
    SetSetting(L"WINDOW_MODE", settings.windowMode);
    g_settingsKey.WriteBool(L"SEASONING", settings.seasoning);
    SetSetting(L"MUSIC_VOLUME", settings.musicVolume);
    SetSetting(L"SOUND_VOLUME", settings.soundVolume);
}

void SeedLauncherValues() {
    for (const wchar_t* name : LauncherOptions) {
        if (IsMissing(g_launcherKey, name)) g_launcherKey.WriteDword(name, 0);
    }
}

bool WriteGameDefaults(std::uint32_t language, const Install::Steps& steps) {
    Report(steps, Install::Step::OpenSettings);
    Platform::RegistryKey key;
    if (!OpenForWriting(g_settingsKey, key)) return false;
    Report(steps, Install::Step::WriteDefaults);
    for (const GameDefault& entry : GameDefaults) {
        const bool isLanguage = entry.name == LanguageName;
        if (isLanguage) Report(steps, Install::Step::StoreLanguage);
        Write(key, entry.name, isLanguage ? language : entry.value);
    }
    key.Close();
    for (const wchar_t* name : LauncherOptions)
        g_launcherKey.WriteDword(name, 0);
    return true;
}

bool WriteUninstallEntry(const std::wstring& folder, std::uint64_t bytes,
                         const Install::Steps& steps) {
    Report(steps, Install::Step::DeliverLauncher);
    const std::wstring launcherPath = DeliverLauncher(folder);
    Report(steps, Install::Step::RegisterUninstall);
    Platform::RegistryKey key;
    if (!OpenForWriting(g_uninstallKey, key)) return false;
    Write(key, L"DisplayName", L"Tolvan Online");
    Write(key, L"Publisher", L"Tolvan");
    WriteUninstallValues(key, folder, launcherPath);
    Write(key, L"EstimatedSize", KibibytesOf(bytes));
    Write(key, L"InstallDate", Today());
    Write(key, L"NoModify", 1);
    Write(key, L"NoRepair", 1);
    key.Close();
    SetLastInstallPath(folder);
    return true;
}

void RefreshUninstallEntry(const std::wstring& folder) {
    const std::wstring launcherPath = DeliverLauncher(folder);
    Platform::RegistryKey key;
    if (!OpenForWriting(g_uninstallKey, key)) return;
    WriteUninstallValues(key, folder, launcherPath);
    std::uint64_t bytes = 0;
    std::uint64_t files = 0;
    FolderStat(folder, bytes, files);
    if (bytes != 0) Write(key, L"EstimatedSize", KibibytesOf(bytes));
    key.Close();
    SetLastInstallPath(folder);
}

std::wstring GetInstallLocation() {
    return NormalisePath(g_uninstallKey.ReadString(L"InstallLocation", L""));
}

void SetInstallLocation(const std::wstring& path) {
    g_uninstallKey.WriteString(L"InstallLocation", NormalisePath(path));
}

std::wstring GetInstallDate() {
    return g_uninstallKey.ReadString(L"InstallDate", L"");
}

std::uint64_t GetInstalledBytes() {
    return std::uint64_t{g_uninstallKey.ReadDword(L"EstimatedSize", 0)} << 10;
}

std::wstring GetLastInstallPath() {
    return g_launcherKey.ReadString(L"LastInstallPath", L"");
}

void SetLastInstallPath(const std::wstring& path) {
    if (!path.empty()) g_launcherKey.WriteString(L"LastInstallPath", path);
}

}  // namespace Launcher
