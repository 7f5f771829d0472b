#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/system_facts.h"

/// What the machine offers, in the words of the setup and settings pages. Any thread.
namespace Launcher {

/// Of the drive that the path names, or of "C:\" when it names none: bytes free to this user, and
/// the volume's size. False leaves both untouched.
bool GetDiskSpace(const std::wstring& path, std::uint64_t& freeBytes, std::uint64_t& totalBytes);

/// The developer switch that has this machine taken for a 32-bit one. Set once at start-up.
void ForceArchitectureX86(bool force);

/// "x86", "x64", "ARM64" or "Unknown".
std::wstring GetArchitectureName();

/// "Windows 11", "Windows 8.1", ...; "Windows " and the major version for one without a name.
std::wstring GetWindowsName();
std::wstring WindowsNameOf(const Platform::SystemVersion& version);
bool IsWindows10OrLater();

bool HasDirect3D11();
/// "d3dcompiler_47.dll" loads.
bool HasShaderCompiler();

/// The screen's modes of at least 1024 by 768, each once, by width and then height; that one mode
/// when there is none.
std::vector<Platform::ScreenMode> ListDisplayModes();
std::vector<Platform::ScreenMode> SelectDisplayModes(std::vector<Platform::ScreenMode> modes);

}  // namespace Launcher
