#pragma once

#include <functional>
#include <string>

/// What stands in a game folder and around it, and how it is put there.
namespace Launcher {

inline constexpr const wchar_t* GameName = L"Tolvan Online";
/// This program, in the game folder.
inline constexpr const wchar_t* LauncherFileName = L"Tolvan Online.exe";
/// The game client, hidden in the game folder.
inline constexpr const wchar_t* ClientFileName = L".Tolvan Online.exe";
inline constexpr const wchar_t* ShaderCompilerFileName = L"d3dcompiler_47.dll";

namespace Install {

/// The sub-steps that the helpers below and the settings store report while they work.
enum class Step {
    FindShaderCompiler,    ///< SUB_D3D_FIND
    DeployShaderCompiler,  ///< SUB_PREFLIGHT
    OpenSettings,          ///< SUB_REG_OPEN
    WriteDefaults,         ///< SUB_REGISTRY
    StoreLanguage,         ///< SUB_REG_LANG
    DeliverLauncher,       ///< SUB_ARP_DELIVER
    RegisterUninstall,     ///< SUB_UNINST2
    FindShortcutFolder,    ///< SUB_LINK_FIND
    MakeStartMenuFolder,   ///< SUB_LINK_DIR
    WriteDesktopLink,      ///< SUB_DESKTOP
    WriteStartMenuLink,    ///< SUB_STARTMENU
};

/// Told of each step as it begins; may be empty.
using Steps = std::function<void(Step)>;

}  // namespace Install

/// Puts the shader compiler library that travels in this program into the system folder, unless one
/// loads or stands there. False when it is missing and could not be written.
bool DeployShaderCompiler(const Install::Steps& steps);

/// Makes sure that a launcher stands in the folder, by copying the running program where there is
/// none, and deletes launchers of old names. The answer is its path, also when that failed.
std::wstring DeliverLauncher(const std::wstring& folder);

/// Gives the client's file the attributes hidden, system and not content-indexed, and no others.
bool HideClientFile(const std::wstring& path);

/// Both links start the folder's launcher in the folder. The thread holds a ShellApartment.
bool CreateDesktopShortcut(const std::wstring& folder, const Install::Steps& steps);
bool CreateStartMenuEntry(const std::wstring& folder, const Install::Steps& steps);

/// Where those links lie; empty when the system does not know the folder.
std::wstring DesktopShortcutPath();
std::wstring StartMenuFolder();

}  // namespace Launcher
