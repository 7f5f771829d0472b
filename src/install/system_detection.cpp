#include "install/system_detection.h"

#include <algorithm>

#include "install/game_folder.h"
#include "platform/disks.h"

namespace Launcher {

namespace {

bool g_forceX86 = false;

constexpr Platform::ScreenMode SmallestMode{1024, 768};
constexpr std::uint32_t FirstBuildOfWindows11 = 22000;

}  // namespace

bool GetDiskSpace(const std::wstring& path, std::uint64_t& freeBytes, std::uint64_t& totalBytes) {
    const bool namesDrive = path.size() >= 2 && path[1] == L':';
    Platform::DiskSpace space;
    const Platform::Error error =
        Platform::GetDiskSpace(namesDrive ? path.substr(0, 2) + L"\\" : L"C:\\", space);
    if (!Platform::Succeeded(error)) return false;
    freeBytes = space.freeBytes;
    totalBytes = space.totalBytes;
    return true;
}

void ForceArchitectureX86(bool force) {
    g_forceX86 = force;
}

std::wstring GetArchitectureName() {
    if (g_forceX86) return L"x86";
    switch (Platform::GetNativeArchitecture()) {
        case Platform::Architecture::X86:
            return L"x86";
        case Platform::Architecture::X64:
            return L"x64";
        case Platform::Architecture::Arm64:
            return L"ARM64";
    }
    return L"Unknown";
}

std::wstring WindowsNameOf(const Platform::SystemVersion& version) {
    if (version.major > 9 && version.build >= FirstBuildOfWindows11) return L"Windows 11";
    if (version.major == 10) return L"Windows 10";
    if (version.major == 6 && version.minor == 3) return L"Windows 8.1";
    if (version.major == 6 && version.minor == 2) return L"Windows 8";
    if (version.major == 6 && version.minor == 1) return L"Windows 7";
    return L"Windows " + std::to_wstring(version.major);
}

std::wstring GetWindowsName() {
    return WindowsNameOf(Platform::GetSystemVersion());
}

bool IsWindows10OrLater() {
    return Platform::GetSystemVersion().major > 9;
}

bool HasDirect3D11() {
    return Platform::HasDirect3D11Device();
}

bool HasShaderCompiler() {
    return Platform::CanLoadLibrary(ShaderCompilerFileName,
                                    Platform::LibraryPlaces::SystemFolder) ||
           Platform::CanLoadLibrary(ShaderCompilerFileName, Platform::LibraryPlaces::All);
}

std::vector<Platform::ScreenMode> SelectDisplayModes(std::vector<Platform::ScreenMode> modes) {
    std::erase_if(modes, [](const Platform::ScreenMode& mode) {
        return mode.width < SmallestMode.width || mode.height < SmallestMode.height;
    });
    std::sort(modes.begin(), modes.end());
    modes.erase(std::unique(modes.begin(), modes.end()), modes.end());
    if (modes.empty()) modes.push_back(SmallestMode);
    return modes;
}

std::vector<Platform::ScreenMode> ListDisplayModes() {
    return SelectDisplayModes(Platform::ListScreenModes());
}

}  // namespace Launcher
