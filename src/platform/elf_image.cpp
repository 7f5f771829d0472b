#include <string_view>
#include <vector>

#include "platform/image_bytes.h"

namespace Platform {

using namespace ImageBytes;

namespace {

/// Where the numbers lie in the two classes of ELF files.
struct ElfLayout {
    std::size_t headerSize;
    std::size_t sectionsOffset;  ///< in the file header
    std::size_t sectionSize;     ///< in the file header, followed by count and index of the names
    std::size_t entrySize;       ///< of a section header
    std::size_t entryOffset;     ///< in a section header, followed by its size
    std::size_t numberSize;      ///< of offsets and sizes

    std::uint64_t Number(std::span<const std::byte> bytes, std::size_t at) const {
        return numberSize == 8 ? Little<std::uint64_t>(bytes, at) : Little32(bytes, at);
    }
};

constexpr ElfLayout Elf32{52, 32, 46, 40, 16, 4};
constexpr ElfLayout Elf64{64, 40, 58, 64, 24, 8};

constexpr std::string_view ElfMagic = "\177ELF";
constexpr std::string_view ElfSectionName{".tolvan_rsrc\0", 13};
constexpr std::uint16_t MostElfSections = 1024;

struct ElfMachine {
    std::uint16_t elf;
    std::uint16_t pe;
};
constexpr ElfMachine ElfMachines[] = {{3, MachineX86}, {62, MachineX64}, {183, MachineArm64}};

bool Equals(std::span<const std::byte> bytes, std::string_view text) {
    return std::memcmp(bytes.data(), text.data(), text.size()) == 0;
}

/// The layout of a little-endian ELF file.
const ElfLayout* ReadElfLayout(const ImageReader& image) {
    const auto start = Take<6>(image, 0);
    if (!start || !Equals(*start, ElfMagic) || (*start)[5] != std::byte{1}) return nullptr;
    switch (std::to_integer<int>((*start)[4])) {
        case 1:
            return &Elf32;
        case 2:
            return &Elf64;
        default:
            return nullptr;
    }
}

struct ElfSections {
    std::vector<std::byte> headers;
    std::uint16_t nameIndex;  ///< the section that holds the names
};

std::optional<ElfSections> ReadElfSections(const ImageReader& image, const ElfLayout& layout) {
    std::array<std::byte, 64> header;
    if (!ReadAll(image, 0, std::span(header).first(layout.headerSize))) return std::nullopt;
    const std::uint64_t offset = layout.Number(header, layout.sectionsOffset);
    const std::uint16_t entrySize = Little16(header, layout.sectionSize);
    const std::uint16_t count = Little16(header, layout.sectionSize + 2);
    if (count == 0) return ElfSections{};
    if (entrySize != layout.entrySize || count > MostElfSections) return std::nullopt;
    ElfSections sections{std::vector<std::byte>(count * layout.entrySize),
                         Little16(header, layout.sectionSize + 4)};
    if (!ReadAll(image, offset, sections.headers)) return std::nullopt;
    return sections;
}

ImageRange ElfSectionRange(const ElfLayout& layout, std::span<const std::byte> header) {
    return {layout.Number(header, layout.entryOffset),
            layout.Number(header, layout.entryOffset + layout.numberSize)};
}

std::optional<ImageRange> FindElfSection(const ImageReader& image, const ElfLayout& layout,
                                         const ElfSections& sections) {
    const std::span<const std::byte> headers(sections.headers);
    const std::size_t namesAt = sections.nameIndex * layout.entrySize;
    if (namesAt >= headers.size()) return std::nullopt;
    const ImageRange names = ElfSectionRange(layout, headers.subspan(namesAt));
    for (std::size_t at = 0; at < headers.size(); at += layout.entrySize) {
        const std::uint32_t nameAt = Little32(headers, at);
        if (!Contains(names, nameAt, ElfSectionName.size())) continue;
        const auto name = Take<ElfSectionName.size()>(image, names.offset + nameAt);
        if (name && Equals(*name, ElfSectionName)) {
            return ElfSectionRange(layout, headers.subspan(at));
        }
    }
    return std::nullopt;
}

}  // namespace

std::uint16_t ReadElfMachine(const ImageReader& image) {
    const auto machine = Take<2>(image, 18);
    if (!machine || ReadElfLayout(image) == nullptr) return 0;
    for (const ElfMachine& known : ElfMachines) {
        if (known.elf == Little16(*machine, 0)) return known.pe;
    }
    return 0;
}

ImageSearch FindElfResource(const ImageReader& image, std::uint16_t id) {
    const ElfLayout* layout = ReadElfLayout(image);
    if (layout == nullptr) return {};
    const auto sections = ReadElfSections(image, *layout);
    if (!sections) return {};
    const auto section = FindElfSection(image, *layout, *sections);
    const auto range = section ? FindInResourceSection(image, *section, id) : std::nullopt;
    return Answer(image, range);
}

std::optional<ImageRange> FindInResourceSection(const ImageReader& image, ImageRange section,
                                                std::uint16_t id) {
    constexpr std::size_t HeaderSize = 16;
    constexpr std::size_t EntrySize = 12;
    const auto header = Take<HeaderSize>(image, section.offset);
    if (!header || section.size < HeaderSize || !Equals(*header, "TOLVANRC")) return std::nullopt;
    const std::uint32_t count = Little32(*header, 8);
    if (count > (section.size - HeaderSize) / EntrySize) return std::nullopt;
    const auto entry = FindSorted<EntrySize>(image, section.offset + HeaderSize, count, id);
    if (!entry || !Contains(section, Little32(*entry, 4), Little32(*entry, 8))) return std::nullopt;
    return ImageRange{section.offset + Little32(*entry, 4), Little32(*entry, 8)};
}

}  // namespace Platform
