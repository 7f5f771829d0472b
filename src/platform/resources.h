#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

/// What executables carry. Resources are numbered byte ranges, all of the raw-data type (10).
namespace Platform {

/// A resource of the running program. Empty when there is none; the bytes stay valid and must not
/// be written. Any thread.
std::span<const std::byte> FindOwnResource(std::uint16_t id);

enum class ResourceSearch { Found, NotFound, Unreadable };

/// Looks for a resource in another executable's file without running any of its code.
/// Unreadable when the file is missing or no executable image.
ResourceSearch FindResourceInFile(const std::wstring& path, std::uint16_t id);

/// The machine type of another executable's file, as PE headers give it (0x014C x86, 0x8664 x64,
/// 0xAA64 Arm64); 0 for whatever cannot be read.
std::uint16_t ReadMachineType(const std::wstring& path);

}  // namespace Platform
