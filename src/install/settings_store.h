#pragma once

#include <cstdint>
#include <string>

#include "install/game_folder.h"
#include "install/registry_record.h"

/// The program's only persistent store: three keys of the user's registry. Any thread.
namespace Launcher {

/// The options that the game client reads.
inline const RegistryRecord g_settingsKey{L"Software\\TolvanOnline\\Settings"};
/// The launcher's own choices.
inline const RegistryRecord g_launcherKey{L"Software\\TolvanOnline\\Launcher"};
/// What the system shows under Add or remove programs.
inline const RegistryRecord g_uninstallKey{
    L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\TolvanOnline"};

std::uint32_t GetSetting(const wchar_t* name, std::uint32_t fallback);
void SetSetting(const wchar_t* name, std::uint32_t value);

/// The index of the chosen language in the text table; -1 when none was chosen. Not checked.
std::int32_t GetLanguage();

/// What the settings page edits, with what holds for a missing value. A fresh install writes other
/// values for some of them (WriteGameDefaults).
struct LauncherSettings {
    std::uint32_t clientArch = 0;
    std::uint32_t screenWidth = 1024;
    std::uint32_t screenHeight = 768;
    std::uint32_t windowMode = 0;
    bool closeAfterStart = false;
    bool seasoning = true;
    std::uint32_t musicVolume = 55;
    std::uint32_t soundVolume = 70;
};

LauncherSettings LoadSettings();
void SaveSettings(const LauncherSettings& settings);

/// Writes 0 for the launcher's two options where they are missing. Once, at start-up.
void SeedLauncherValues();

/// Resets all options of game and launcher to what a fresh install has. False when the settings
/// key cannot be opened; nothing else is done then.
[[nodiscard]] bool WriteGameDefaults(std::uint32_t language, const Install::Steps& steps);

/// Places the launcher in the folder and registers the installation of so many bytes. False when
/// the key cannot be opened.
[[nodiscard]] bool WriteUninstallEntry(const std::wstring& folder, std::uint64_t bytes,
                                       const Install::Steps& steps);

/// After a move or a relink: the launcher is placed and what depends on the folder is written
/// again, with the size where it can be measured.
void RefreshUninstallEntry(const std::wstring& folder);

/// The path is normalised both ways.
std::wstring GetInstallLocation();
void SetInstallLocation(const std::wstring& path);

/// As "20260131"; empty when unknown.
std::wstring GetInstallDate();
/// The registry holds KiB, modulo 4 TiB.
std::uint64_t GetInstalledBytes();
std::wstring GetLastInstallPath();
/// An empty path is not stored.
void SetLastInstallPath(const std::wstring& path);

}  // namespace Launcher
