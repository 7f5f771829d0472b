#include "platform/system_facts.h"

#include <string_view>
#include <sys/utsname.h>

#include "platform/files.h"
#include "platform/paths.h"

namespace Platform {

Architecture GetNativeArchitecture() {
    utsname names{};
    ::uname(&names);
    const std::string_view machine = names.machine;
    if (machine == "x86_64") return Architecture::X64;
    if (machine == "aarch64") return Architecture::Arm64;
    return Architecture::X86;
}

// The machine plays Windows 10, 22H2.
SystemVersion GetSystemVersion() {
    return {10, 0, 19045};
}

bool HasDirect3D11Device() {
    return true;
}

bool CanLoadLibrary(const std::wstring& fileName, LibraryPlaces places) {
    if (PathExists(GetSystemFolder() + L'\\' + fileName)) return true;
    if (places == LibraryPlaces::SystemFolder) return false;
    const std::wstring program = OwnPath();
    return PathExists(program.substr(0, program.rfind(L'\\') + 1) + fileName);
}

std::vector<ScreenMode> ListScreenModes() {
    return {{800, 600}, {1024, 768}, {1280, 720}, {1366, 768}, {1600, 900}, {1920, 1080}};
}

}  // namespace Platform
