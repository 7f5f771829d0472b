#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// What the update endpoint answers about a published program. Pure.
namespace Launcher {

/// An answer is no longer than this many bytes.
inline constexpr std::size_t LongestEndpointAnswer = 4096;

/// The launcher's answer begins with its CRC-32 in decimal; what follows the digits is not looked
/// at, and a number beyond 32 bits wraps. Nothing for an answer without digits and for a CRC of 0.
std::optional<std::uint32_t> ParseLauncherAnswer(std::string_view answer);

struct PublishedClient {
    std::uint32_t crc = 0;
    std::uint64_t size = 0;  ///< bytes, above 0
};

/// The client's answer holds its CRC-32 and, behind blanks or tabs, its size, both in decimal.
std::optional<PublishedClient> ParseClientAnswer(std::string_view answer);

/// The address at which the endpoint answers for a program, by the name it is published under.
std::wstring EndpointUrl(const std::wstring& baseUrl, std::wstring_view publishedName);

}  // namespace Launcher
