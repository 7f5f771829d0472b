#include "patch/file_wrapper.h"

#include <algorithm>
#include <concepts>

namespace Launcher {
namespace {

constexpr std::array Magic{std::byte{'T'}, std::byte{'P'}, std::byte{'K'}, std::byte{'1'}};
constexpr std::size_t PayloadSizeOffset = 8;

template <std::unsigned_integral Number>
Number ReadLittleEndian(const std::byte* bytes) {
    Number number = 0;
    for (std::size_t i = sizeof(Number); i > 0; --i) {
        number = static_cast<Number>(number << 8) | std::to_integer<Number>(bytes[i - 1]);
    }
    return number;
}

template <std::unsigned_integral Number>
void WriteLittleEndian(std::byte* bytes, Number number) {
    for (std::size_t i = 0; i < sizeof(Number); ++i) {
        bytes[i] = static_cast<std::byte>((number >> (8 * i)) & 0xFF);
    }
}

}  // namespace

std::optional<std::uint64_t> WrappedPayloadSize(const WrapperHeader& header,
                                                std::uint64_t fileSize) {
    if (fileSize < WrapperOverhead || !std::ranges::equal(Magic, std::span(header).first<4>())) {
        return std::nullopt;
    }
    const auto payloadSize = ReadLittleEndian<std::uint64_t>(header.data() + PayloadSizeOffset);
    if (payloadSize != fileSize - WrapperOverhead) return std::nullopt;
    return payloadSize;
}

std::uint32_t StoredCrc(const WrapperTrailer& trailer) {
    return ReadLittleEndian<std::uint32_t>(trailer.data());
}

WrapperHeader MakeWrapperHeader(std::uint64_t payloadSize) {
    WrapperHeader header{};
    std::ranges::copy(Magic, header.begin());
    WriteLittleEndian(header.data() + PayloadSizeOffset, payloadSize);
    return header;
}

WrapperTrailer MakeWrapperTrailer(std::uint32_t payloadCrc) {
    WrapperTrailer trailer;
    WriteLittleEndian(trailer.data(), payloadCrc);
    return trailer;
}

}  // namespace Launcher
