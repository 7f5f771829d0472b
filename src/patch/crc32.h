#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

/// CRC-32 as the update list and the file wrapper carry it: reflected polynomial 0xEDB88320,
/// initial value 0xFFFFFFFF, final complement. Any thread; an object belongs to one at a time.
namespace Launcher {

inline constexpr std::uint32_t Crc32Polynomial = 0xEDB88320;

/// The CRC of bytes that come in pieces. Pieces may have any length and alignment.
class Crc32 {
public:
    void Update(std::span<const std::byte> bytes);
    /// The CRC of all bytes so far: 0 before the first one.
    std::uint32_t Value() const { return ~running_; }

private:
    std::uint32_t running_ = 0xFFFFFFFF;
};

std::uint32_t Crc32Of(std::span<const std::byte> bytes);

/// One way to run the CRC on: takes the running value (not complemented) past the bytes.
struct Crc32Method {
    const char* name;
    bool (*isSupported)();  ///< by this processor
    std::uint32_t (*advance)(std::uint32_t running, std::span<const std::byte> bytes);
};

/// Fastest first; the last one, the byte table, works everywhere. Crc32 uses the first that this
/// processor supports.
std::span<const Crc32Method> Crc32Methods();

/// The byte table's way, which also ends what the others begin.
std::uint32_t AdvanceByTable(std::uint32_t running, std::span<const std::byte> bytes);

}  // namespace Launcher
