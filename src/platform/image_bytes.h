#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

#include "platform/executable_image.h"

/// Little-endian numbers and bounded reads, for the image readers alone.
namespace Platform::ImageBytes {

template <typename Number>
Number Little(std::span<const std::byte> bytes, std::size_t at) {
    static_assert(std::endian::native == std::endian::little);
    Number number = 0;
    std::memcpy(&number, bytes.data() + at, sizeof number);
    return number;
}

inline std::uint16_t Little16(std::span<const std::byte> bytes, std::size_t at) {
    return Little<std::uint16_t>(bytes, at);
}

inline std::uint32_t Little32(std::span<const std::byte> bytes, std::size_t at) {
    return Little<std::uint32_t>(bytes, at);
}

inline bool ReadAll(const ImageReader& image, std::uint64_t offset, std::span<std::byte> buffer) {
    return image(offset, buffer) == buffer.size();
}

template <std::size_t Size>
std::optional<std::array<std::byte, Size>> Take(const ImageReader& image, std::uint64_t offset) {
    std::array<std::byte, Size> bytes;
    if (!ReadAll(image, offset, bytes)) return std::nullopt;
    return bytes;
}

inline bool Contains(const ImageRange& range, std::uint64_t offset, std::uint64_t size) {
    return offset <= range.size && size <= range.size - offset;
}

/// Finds the entry whose first 32-bit number is the key among count sorted ones of Size bytes.
template <std::size_t Size>
std::optional<std::array<std::byte, Size>> FindSorted(const ImageReader& image, std::uint64_t first,
                                                      std::uint32_t count, std::uint32_t key) {
    std::uint32_t low = 0;
    std::uint32_t high = count;
    while (low < high) {
        const std::uint32_t middle = low + (high - low) / 2;
        const auto entry = Take<Size>(image, first + std::uint64_t{middle} * Size);
        if (!entry) return std::nullopt;
        const std::uint32_t found = Little32(*entry, 0);
        if (found == key) return entry;
        if (found < key) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    return std::nullopt;
}

/// The search's answer for a range that the image claims: found when its last byte is there.
inline ImageSearch Answer(const ImageReader& image, const std::optional<ImageRange>& range) {
    if (!range) return {ResourceSearch::NotFound, {}};
    const std::uint64_t end = range->offset + range->size;
    const bool there = range->size == 0 || (end > range->offset && Take<1>(image, end - 1));
    return there ? ImageSearch{ResourceSearch::Found, *range}
                 : ImageSearch{ResourceSearch::NotFound, {}};
}

}  // namespace Platform::ImageBytes
