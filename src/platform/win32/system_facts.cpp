#include "platform/system_facts.h"

#include <windows.h>

#include <array>
#include <d3d11.h>

#include "platform/win32/handles.h"

namespace Platform {

namespace {

template <typename Function>
Function FindFunction(HMODULE module, const char* name) {
    return module ? reinterpret_cast<Function>(GetProcAddress(module, name)) : nullptr;
}

bool Loads(const std::wstring& fileName, DWORD flags) {
    return Library(LoadLibraryExW(fileName.c_str(), nullptr, flags)) != nullptr;
}

}  // namespace

Architecture GetNativeArchitecture() {
    SYSTEM_INFO info;
    GetNativeSystemInfo(&info);
    return static_cast<Architecture>(info.wProcessorArchitecture);
}

SystemVersion GetSystemVersion() {
    // GetVersionEx answers what the manifest lets it; this one tells the truth.
    using RtlGetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOW*);
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    const auto rtlGetVersion =
        FindFunction<RtlGetVersionFunction>(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
    if (!rtlGetVersion || rtlGetVersion(&version) != 0) return {};
    return {version.dwMajorVersion, version.dwMinorVersion, version.dwBuildNumber};
}

bool HasDirect3D11Device() {
    const Library library(LoadLibraryW(L"d3d11.dll"));
    const auto create = FindFunction<PFN_D3D11_CREATE_DEVICE>(library.get(), "D3D11CreateDevice");
    if (!create) return false;
    constexpr std::array levels{D3D_FEATURE_LEVEL_11_0, D3D_FEATURE_LEVEL_10_1,
                                D3D_FEATURE_LEVEL_10_0};
    ID3D11Device* device = nullptr;
    const HRESULT result =
        create(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, levels.data(),
               static_cast<UINT>(levels.size()), D3D11_SDK_VERSION, &device, nullptr, nullptr);
    if (!device) return false;
    device->Release();
    return SUCCEEDED(result);
}

bool CanLoadLibrary(const std::wstring& fileName, LibraryPlaces places) {
    return Loads(fileName,
                 places == LibraryPlaces::SystemFolder ? LOAD_LIBRARY_SEARCH_SYSTEM32 : 0);
}

std::vector<ScreenMode> ListScreenModes() {
    std::vector<ScreenMode> modes;
    DEVMODEW mode{};
    mode.dmSize = sizeof mode;
    for (DWORD index = 0; EnumDisplaySettingsW(nullptr, index, &mode); ++index) {
        modes.push_back({static_cast<int>(mode.dmPelsWidth), static_cast<int>(mode.dmPelsHeight)});
    }
    return modes;
}

}  // namespace Platform
