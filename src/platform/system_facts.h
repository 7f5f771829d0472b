#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// What kind of machine this is. Any thread.
namespace Platform {

/// Processor architectures, with their Windows values. Others may occur.
enum class Architecture : std::uint16_t { X86 = 0, X64 = 9, Arm64 = 12 };

/// The machine's own architecture, whatever this program was built for.
Architecture GetNativeArchitecture();

struct SystemVersion {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    std::uint32_t build = 0;
};
/// All zero when the system does not tell. Not bent by compatibility settings.
SystemVersion GetSystemVersion();

/// A hardware device of Direct3D 11 can be made, at feature level 10.0 or above.
bool HasDirect3D11Device();

enum class LibraryPlaces { SystemFolder, All };
/// The library loads from there; it is let go at once.
bool CanLoadLibrary(const std::wstring& fileName, LibraryPlaces places);

struct ScreenMode {
    int width = 0;   ///< pixels
    int height = 0;  ///< pixels
    auto operator<=>(const ScreenMode&) const = default;
};
/// Every mode of the primary screen, in the system's order, one entry for each colour depth and
/// refresh rate.
std::vector<ScreenMode> ListScreenModes();

}  // namespace Platform
