#include <vector>

#include "platform/image_bytes.h"

namespace Platform {

using namespace ImageBytes;

namespace {

struct PeSection {
    std::uint32_t address;  ///< where it is loaded, from the image's base
    ImageRange range;       ///< where it lies in the file
};

struct PeHeader {
    std::uint16_t machine;
    std::uint16_t sectionCount;
    std::uint16_t optionalSize;
    std::uint64_t optionalOffset;
};

constexpr std::uint16_t MostSections = 96;  // of an image that Windows loads
constexpr std::uint32_t RawDataType = 10;
constexpr std::uint32_t SubfolderFlag = 0x80000000;

std::optional<PeHeader> ReadPeHeader(const ImageReader& image) {
    const auto dos = Take<64>(image, 0);
    if (!dos || Little16(*dos, 0) != 0x5A4D) return std::nullopt;
    const std::uint32_t offset = Little32(*dos, 60);
    if (offset == 0 || offset > INT32_MAX) return std::nullopt;
    const auto header = Take<24>(image, offset);
    if (!header || Little32(*header, 0) != 0x00004550) return std::nullopt;
    return PeHeader{Little16(*header, 4), Little16(*header, 6), Little16(*header, 20),
                    std::uint64_t{offset} + 24};
}

/// The loaded address of the resources, 0 when there are none; nothing for no proper image.
std::optional<std::uint32_t> ReadResourceAddress(const ImageReader& image, const PeHeader& header) {
    const auto magic = Take<2>(image, header.optionalOffset);
    if (!magic || header.optionalSize < 2) return std::nullopt;
    const bool wide = Little16(*magic, 0) == 0x20B;
    if (!wide && Little16(*magic, 0) != 0x10B) return std::nullopt;
    const std::uint16_t folders = wide ? 112 : 96;  // each an address and a size
    const std::uint16_t resources = folders + 2 * 8;
    if (header.optionalSize < resources + 8) return 0;
    const auto count = Take<4>(image, header.optionalOffset + folders - 4u);
    const auto folder = Take<8>(image, header.optionalOffset + resources);
    if (!count || !folder) return std::nullopt;
    return Little32(*count, 0) > 2 ? Little32(*folder, 0) : 0;
}

std::optional<std::vector<PeSection>> ReadPeSections(const ImageReader& image,
                                                     const PeHeader& header) {
    constexpr std::size_t Size = 40;
    if (header.sectionCount > MostSections) return std::nullopt;
    std::vector<std::byte> bytes(header.sectionCount * Size);
    if (!ReadAll(image, header.optionalOffset + header.optionalSize, bytes)) return std::nullopt;
    std::vector<PeSection> sections;
    for (std::size_t at = 0; at < bytes.size(); at += Size) {
        sections.push_back(
            {Little32(bytes, at + 12), {Little32(bytes, at + 20), Little32(bytes, at + 16)}});
    }
    return sections;
}

/// The bytes from the address to the end of its section.
std::optional<ImageRange> MapAddress(const std::vector<PeSection>& sections,
                                     std::uint32_t address) {
    for (const PeSection& section : sections) {
        if (address < section.address) continue;
        const std::uint32_t inside = address - section.address;
        if (inside >= section.range.size) continue;
        return ImageRange{section.range.offset + inside, section.range.size - inside};
    }
    return std::nullopt;
}

/// What the folder at the offset holds under the id, or, without one, its first entry: the offset
/// of the next folder, with the flag, or of the data. All offsets count from the resources' begin.
std::optional<std::uint32_t> FindInPeFolder(const ImageReader& image, const ImageRange& resources,
                                            std::uint32_t offset, std::optional<std::uint32_t> id) {
    const auto header =
        Contains(resources, offset, 16) ? Take<16>(image, resources.offset + offset) : std::nullopt;
    if (!header) return std::nullopt;
    const std::uint32_t named = Little16(*header, 12);
    const std::uint32_t numbered = Little16(*header, 14);
    const std::uint64_t entries = std::uint64_t{offset} + 16;
    if (!Contains(resources, entries, std::uint64_t{named + numbered} * 8)) return std::nullopt;
    std::optional<std::array<std::byte, 8>> entry;
    if (id) {
        entry = FindSorted<8>(image, resources.offset + entries + std::uint64_t{named} * 8,
                              numbered, *id);
    } else if (named + numbered > 0) {
        entry = Take<8>(image, resources.offset + entries);
    }
    if (!entry) return std::nullopt;
    return Little32(*entry, 4);
}

/// The three levels are type, id and language, so there is no way to go round in a circle.
std::optional<ImageRange> FindPeData(const ImageReader& image, const ImageRange& resources,
                                     const std::vector<PeSection>& sections, std::uint16_t id) {
    const auto ids = FindInPeFolder(image, resources, 0, RawDataType);
    if (!ids || (*ids & SubfolderFlag) == 0) return std::nullopt;
    const auto languages = FindInPeFolder(image, resources, *ids & ~SubfolderFlag, id);
    if (!languages || (*languages & SubfolderFlag) == 0) return std::nullopt;
    const auto data = FindInPeFolder(image, resources, *languages & ~SubfolderFlag, std::nullopt);
    if (!data || !Contains(resources, *data, 16)) return std::nullopt;
    const auto entry = Take<16>(image, resources.offset + *data);
    if (!entry) return std::nullopt;
    const auto range = MapAddress(sections, Little32(*entry, 0));
    const std::uint32_t size = Little32(*entry, 4);
    if (!range || size > range->size) return std::nullopt;
    return ImageRange{range->offset, size};
}

}  // namespace

std::uint16_t ReadPeMachine(const ImageReader& image) {
    const auto header = ReadPeHeader(image);
    return header ? header->machine : std::uint16_t{0};
}

ImageSearch FindPeResource(const ImageReader& image, std::uint16_t id) {
    const auto header = ReadPeHeader(image);
    if (!header) return {};
    const auto address = ReadResourceAddress(image, *header);
    const auto sections = ReadPeSections(image, *header);
    if (!address || !sections) return {};
    const auto resources = *address == 0 ? std::nullopt : MapAddress(*sections, *address);
    const auto range = resources ? FindPeData(image, *resources, *sections, id) : std::nullopt;
    return Answer(image, range);
}

}  // namespace Platform
