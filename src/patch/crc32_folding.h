#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "patch/crc32.h"

/// CRC-32 by carry-less multiplication. A message is a polynomial over GF(2) and its CRC the
/// remainder modulo P. Any run of bits A that stands D bits before another run B may be replaced
/// by B + A * (x^D mod P) without changing that remainder: a long message is "folded" onto its
/// next piece again and again, until 16 bytes are left for the byte table.
namespace Launcher {

/// Polynomials are held reflected, as the CRC does: the most significant bit of a word is the
/// coefficient of x^0. Multiplying by x is thus a shift to the right, and what falls out at x^32
/// comes back as the polynomial.
constexpr std::uint32_t MultiplyByX(std::uint32_t value) {
    return (value >> 1) ^ ((value & 1) != 0 ? Crc32Polynomial : 0);
}

/// The factor that moves a 64-bit half over a distance in bits: x^(distance - 1) mod P, as the
/// 64-bit word that the multiply instruction takes. One power less, since the product of two
/// reflected 64-bit words has 127 bits and so stands one place, one factor x, too high in 128.
constexpr std::uint64_t FoldFactor(unsigned distance) {
    std::uint32_t power = 0x80000000;
    for (unsigned exponent = 1; exponent < distance; ++exponent)
        power = MultiplyByX(power);
    return std::uint64_t{power} << 32;
}

/// The processor has the instructions, and the system saves the registers, that a way needs.
bool FoldingSupported();      ///< PCLMULQDQ
bool AvxFoldingSupported();   ///< the same code in AVX encoding, which spares half the moves
bool WideFoldingSupported();  ///< VPCLMULQDQ on 512-bit registers

std::uint32_t AdvanceByFolding(std::uint32_t running, std::span<const std::byte> bytes);
std::uint32_t AdvanceByAvxFolding(std::uint32_t running, std::span<const std::byte> bytes);
std::uint32_t AdvanceByWideFolding(std::uint32_t running, std::span<const std::byte> bytes);

}  // namespace Launcher
