#include "install/game_folder.h"

#include <array>
#include <span>

#include "install/path_rules.h"
#include "install/system_detection.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/resources.h"
#include "platform/shell_links.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr std::uint16_t ShaderCompilerResource = 3001;  // install/d3dcompiler_47.dll
constexpr std::array OldLauncherNames{L"Tolvan Online Deployer.exe",
                                      L"Tolvan Online Uninstaller.exe"};
constexpr const wchar_t* LinkFileName = L"\\Tolvan Online.lnk";
constexpr const wchar_t* LinkDescription = L"Play Tolvan Online";

void Report(const Install::Steps& steps, Install::Step step) {
    if (steps) steps(step);
}

/// The file comes to its name in one step: half of one would be taken for whole ever after.
std::wstring PartOf(const std::wstring& path) {
    return path + L".part";
}

bool PutInPlace(Platform::Error made, const std::wstring& path) {
    if (Platform::Succeeded(made) &&
        Platform::Succeeded(Platform::MovePath(PartOf(path), path, {.writeThrough = true}))) {
        return true;
    }
    (void)Platform::RemoveFile(PartOf(path));  // there may be none
    return false;
}

Platform::Error WriteFile(const std::wstring& path, std::span<const std::byte> bytes) {
    Platform::File file;
    const Platform::Error opened =
        file.Open(path, {.access = Platform::AccessWrite,
                         .sharing = Platform::ShareNone,
                         .disposition = Platform::Disposition::CreateAlways});
    return Platform::Succeeded(opened) ? file.Write(bytes) : opened;
}

bool CreateShellLink(const std::wstring& linkPath, const std::wstring& folder) {
    const std::wstring launcher = folder + L"\\" + LauncherFileName;
    return Platform::Succeeded(Platform::SaveShellLink(linkPath, {.target = launcher,
                                                                  .workingFolder = folder,
                                                                  .description = LinkDescription,
                                                                  .icon = launcher}));
}

}  // namespace

bool DeployShaderCompiler(const Install::Steps& steps) {
    Report(steps, Install::Step::FindShaderCompiler);
    if (HasShaderCompiler()) return true;
    const std::wstring target = Platform::GetSystemFolder() + L"\\" + ShaderCompilerFileName;
    if (Platform::PathExists(target)) return true;
    Report(steps, Install::Step::DeployShaderCompiler);
    const std::span<const std::byte> library = Platform::FindOwnResource(ShaderCompilerResource);
    return !library.empty() && PutInPlace(WriteFile(PartOf(target), library), target);
}

std::wstring DeliverLauncher(const std::wstring& folder) {
    std::wstring launcher = folder + L"\\" + LauncherFileName;
    const std::wstring running = Platform::OwnPath();
    if (running.empty()) return launcher;
    if (!folder.empty()) (void)CreateFolderPath(folder);  // the copy tells whether it stands
    if (!Platform::PathExists(launcher) && !Platform::EqualIgnoringCase(launcher, running)) {
        // The entry names the launcher's place whether or not it could be put there.
        (void)PutInPlace(Platform::CopyFileTo(running, PartOf(launcher), true), launcher);
    }
    for (const wchar_t* name : OldLauncherNames) {
        (void)Platform::RemoveFile(folder + L"\\" + name);  // mostly there is none
    }
    return launcher;
}

bool HideClientFile(const std::wstring& path) {
    Platform::FileInfo info;
    if (path.empty() || !Platform::Succeeded(Platform::GetFileInfo(path, info)) ||
        info.IsFolder()) {
        return false;
    }
    return Platform::Succeeded(
        Platform::ChangeAttributes(path, Platform::AttributeHidden | Platform::AttributeSystem |
                                             Platform::AttributeNotContentIndexed));
}

std::wstring DesktopShortcutPath() {
    const std::wstring desktop = Platform::GetShellFolder(Platform::ShellFolder::DesktopDirectory);
    return desktop.empty() ? desktop : desktop + LinkFileName;
}

std::wstring StartMenuFolder() {
    const std::wstring programs = Platform::GetShellFolder(Platform::ShellFolder::Programs);
    return programs.empty() ? programs : programs + L"\\" + GameName;
}

bool CreateDesktopShortcut(const std::wstring& folder, const Install::Steps& steps) {
    Report(steps, Install::Step::FindShortcutFolder);
    const std::wstring link = DesktopShortcutPath();
    if (link.empty()) return false;
    Report(steps, Install::Step::WriteDesktopLink);
    return CreateShellLink(link, folder);
}

bool CreateStartMenuEntry(const std::wstring& folder, const Install::Steps& steps) {
    Report(steps, Install::Step::FindShortcutFolder);
    const std::wstring entry = StartMenuFolder();
    if (entry.empty()) return false;
    Report(steps, Install::Step::MakeStartMenuFolder);
    (void)CreateFolderPath(entry);  // saving the link tells whether it stands
    Report(steps, Install::Step::WriteStartMenuLink);
    return CreateShellLink(entry + LinkFileName, folder);
}

}  // namespace Launcher
