#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

/// The wrapper that game files carry on the server and under "Data\":
///
///     0   4  magic "TPK1"
///     4   4  not read
///     8   8  payload size, little-endian
///     16     payload
///     end 4  CRC-32 of the payload, little-endian
///
/// Pure functions of bytes; what the payload holds is the game's business.
namespace Launcher {

inline constexpr std::size_t WrapperHeaderSize = 16;
inline constexpr std::size_t WrapperTrailerSize = 4;
/// A file below this size is plain.
inline constexpr std::size_t WrapperOverhead = WrapperHeaderSize + WrapperTrailerSize;

using WrapperHeader = std::array<std::byte, WrapperHeaderSize>;
using WrapperTrailer = std::array<std::byte, WrapperTrailerSize>;

/// The payload's size when a file of fileSize bytes that begins with these is wrapped: the magic
/// stands there and the sizes fit exactly. Nothing for a plain file.
std::optional<std::uint64_t> WrappedPayloadSize(const WrapperHeader& header,
                                                std::uint64_t fileSize);

/// The CRC that a wrapped file's last four bytes tell.
std::uint32_t StoredCrc(const WrapperTrailer& trailer);

WrapperHeader MakeWrapperHeader(std::uint64_t payloadSize);
WrapperTrailer MakeWrapperTrailer(std::uint32_t payloadCrc);

}  // namespace Launcher
