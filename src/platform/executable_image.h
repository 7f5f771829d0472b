#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "platform/resources.h"

/// Reading executable images without loading them: PE files of Windows and ELF files of the host.
/// Pure code that trusts no byte of the image: it reads a few KiB, whatever the image claims.
/// Any thread.
namespace Platform {

class File;

/// The bytes of an image. Fills the buffer from the offset on and returns how many bytes that
/// were; fewer than asked at the image's end or when it cannot be read.
using ImageReader = std::function<std::size_t(std::uint64_t offset, std::span<std::byte> buffer)>;

/// Reads from memory, which has to outlive the reader.
ImageReader ReadFrom(std::span<const std::byte> bytes);
/// Reads from an open file, which has to outlive the reader.
ImageReader ReadFrom(File& file);

/// Machine types, as PE headers give them.
enum ImageMachine : std::uint16_t {
    MachineX86 = 0x014C,
    MachineX64 = 0x8664,
    MachineArm64 = 0xAA64,
};

/// The machine type in the file header, whichever it is; 0 when this is no PE file.
std::uint16_t ReadPeMachine(const ImageReader& image);
/// The machine of an ELF file, as the number that a PE file would give; 0 when this is no ELF file
/// or one for another kind of machine.
std::uint16_t ReadElfMachine(const ImageReader& image);

/// A range of the image's bytes.
struct ImageRange {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
};

struct ImageSearch {
    ResourceSearch result = ResourceSearch::Unreadable;
    ImageRange range;  ///< of the resource when found; all of it lies in the image
};

/// A raw-data resource (type 10) in any language, the first where it has several.
ImageSearch FindPeResource(const ImageReader& image, std::uint16_t id);
/// A resource in the section that cmake/Resources.cmake adds to an ELF file.
ImageSearch FindElfResource(const ImageReader& image, std::uint16_t id);

/// A resource in the bytes of such a section, which lie in the given range. They begin with a
/// table: the 8 bytes "TOLVANRC", a 32-bit count, 4 zero bytes, then for each resource, sorted by
/// id, three 32-bit numbers: id, offset from the section's begin, size. All little-endian.
std::optional<ImageRange> FindInResourceSection(const ImageReader& image, ImageRange section,
                                                std::uint16_t id);

}  // namespace Platform
