#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// UTF-16 little-endian bytes, which is how the registry keeps text on both platforms. A surrogate
/// without its other half stays what it is. Any thread.
namespace Platform {

std::vector<std::byte> Utf16FromWide(std::wstring_view text);

/// Half a unit at the end is not looked at.
std::wstring WideFromUtf16(std::span<const std::byte> bytes);

}  // namespace Platform
