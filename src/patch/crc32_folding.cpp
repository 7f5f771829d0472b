#include "patch/crc32_folding.h"

#include <array>
#include <immintrin.h>

// Registers hold the message in memory order: the low half of 128 bits is the earlier one and
// stands 64 bits further from the end, so it has the factor of the longer distance. Four registers
// are folded side by side, each onto the piece four registers on, since a multiplication takes
// several cycles to finish but another one can begin in each.

#define TOLVAN_INLINE [[gnu::always_inline]] inline
#define TOLVAN_FOLD [[gnu::target("sse2,pclmul")]]
#define TOLVAN_AVX_FOLD [[gnu::target("avx,pclmul")]]
#define TOLVAN_WIDE_FOLD [[gnu::target("avx512f,vpclmulqdq,avx,pclmul")]]

namespace Launcher {
namespace {

constexpr std::size_t LaneSize = sizeof(__m128i);
constexpr std::size_t WideLaneSize = sizeof(__m512i);

struct FoldFactors {
    std::uint64_t lowHalf;
    std::uint64_t highHalf;
};

constexpr FoldFactors FactorsFor(std::size_t distanceInBytes) {
    const auto bits = static_cast<unsigned>(distanceInBytes * 8);
    return {FoldFactor(bits + 64), FoldFactor(bits)};
}

TOLVAN_FOLD TOLVAN_INLINE __m128i Load(const std::byte* at) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
}

TOLVAN_FOLD TOLVAN_INLINE __m128i Broadcast(FoldFactors factors) {
    return _mm_set_epi64x(static_cast<long long>(factors.highHalf),
                          static_cast<long long>(factors.lowHalf));
}

TOLVAN_FOLD TOLVAN_INLINE __m128i Fold(__m128i lane, __m128i factors, __m128i onto) {
    return _mm_clmulepi64_si128(lane, factors, 0x00) ^ _mm_clmulepi64_si128(lane, factors, 0x11) ^
           onto;
}

/// Inlined into two callers, each of which gives it the encoding of its own target.
TOLVAN_FOLD TOLVAN_INLINE std::uint32_t FoldLanes(std::uint32_t running,
                                                  std::span<const std::byte> bytes) {
    constexpr std::size_t stride = 4 * LaneSize;
    if (bytes.size() < stride) return AdvanceByTable(running, bytes);

    const std::byte* next = bytes.data();
    std::size_t left = bytes.size();
    __m128i lane0 = Load(next) ^ _mm_cvtsi32_si128(static_cast<int>(running));
    __m128i lane1 = Load(next + LaneSize);
    __m128i lane2 = Load(next + 2 * LaneSize);
    __m128i lane3 = Load(next + 3 * LaneSize);
    const __m128i overStride = Broadcast(FactorsFor(stride));
    for (next += stride, left -= stride; left >= stride; next += stride, left -= stride) {
        lane0 = Fold(lane0, overStride, Load(next));
        lane1 = Fold(lane1, overStride, Load(next + LaneSize));
        lane2 = Fold(lane2, overStride, Load(next + 2 * LaneSize));
        lane3 = Fold(lane3, overStride, Load(next + 3 * LaneSize));
    }

    const __m128i overLane = Broadcast(FactorsFor(LaneSize));
    lane0 = Fold(lane0, overLane, lane1);
    lane0 = Fold(lane0, overLane, lane2);
    lane0 = Fold(lane0, overLane, lane3);
    for (; left >= LaneSize; next += LaneSize, left -= LaneSize) {
        lane0 = Fold(lane0, overLane, Load(next));
    }

    std::array<std::byte, LaneSize> folded;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(folded.data()), lane0);
    return AdvanceByTable(AdvanceByTable(0, folded), {next, left});
}

TOLVAN_WIDE_FOLD TOLVAN_INLINE __m512i WideLoad(const std::byte* at) {
    return _mm512_loadu_si512(at);
}

TOLVAN_WIDE_FOLD TOLVAN_INLINE __m512i WideBroadcast(FoldFactors factors) {
    const auto low = static_cast<long long>(factors.lowHalf);
    const auto high = static_cast<long long>(factors.highHalf);
    return _mm512_set4_epi64(high, low, high, low);
}

TOLVAN_WIDE_FOLD TOLVAN_INLINE __m512i WideFold(__m512i lane, __m512i factors, __m512i onto) {
    return _mm512_clmulepi64_epi128(lane, factors, 0x00) ^
           _mm512_clmulepi64_epi128(lane, factors, 0x11) ^ onto;
}

}  // namespace

bool FoldingSupported() {
    return __builtin_cpu_supports("sse2") && __builtin_cpu_supports("pclmul");
}

bool AvxFoldingSupported() {
    return FoldingSupported() && __builtin_cpu_supports("avx");
}

bool WideFoldingSupported() {
    return AvxFoldingSupported() && __builtin_cpu_supports("avx512f") &&
           __builtin_cpu_supports("vpclmulqdq");
}

TOLVAN_FOLD std::uint32_t AdvanceByFolding(std::uint32_t running,
                                           std::span<const std::byte> bytes) {
    return FoldLanes(running, bytes);
}

TOLVAN_AVX_FOLD std::uint32_t AdvanceByAvxFolding(std::uint32_t running,
                                                  std::span<const std::byte> bytes) {
    return FoldLanes(running, bytes);
}

TOLVAN_WIDE_FOLD std::uint32_t AdvanceByWideFolding(std::uint32_t running,
                                                    std::span<const std::byte> bytes) {
    constexpr std::size_t stride = 4 * WideLaneSize;
    if (bytes.size() < stride) return AdvanceByAvxFolding(running, bytes);

    const std::byte* next = bytes.data();
    std::size_t left = bytes.size();
    __m512i lane0 =
        WideLoad(next) ^ _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(running)));
    __m512i lane1 = WideLoad(next + WideLaneSize);
    __m512i lane2 = WideLoad(next + 2 * WideLaneSize);
    __m512i lane3 = WideLoad(next + 3 * WideLaneSize);
    const __m512i overStride = WideBroadcast(FactorsFor(stride));
    for (next += stride, left -= stride; left >= stride; next += stride, left -= stride) {
        lane0 = WideFold(lane0, overStride, WideLoad(next));
        lane1 = WideFold(lane1, overStride, WideLoad(next + WideLaneSize));
        lane2 = WideFold(lane2, overStride, WideLoad(next + 2 * WideLaneSize));
        lane3 = WideFold(lane3, overStride, WideLoad(next + 3 * WideLaneSize));
    }

    const __m512i overLane = WideBroadcast(FactorsFor(WideLaneSize));
    lane0 = WideFold(lane0, overLane, lane1);
    lane0 = WideFold(lane0, overLane, lane2);
    lane0 = WideFold(lane0, overLane, lane3);

    std::array<std::byte, WideLaneSize> folded;
    _mm512_storeu_si512(folded.data(), lane0);
    return AdvanceByAvxFolding(AdvanceByAvxFolding(0, folded), {next, left});
}

}  // namespace Launcher
