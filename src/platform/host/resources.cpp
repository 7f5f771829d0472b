#include "platform/resources.h"

#include "platform/executable_image.h"
#include "platform/files.h"

// Defined where cmake/Resources.cmake puts resources into a program, absent in one without any.
extern "C" {
[[gnu::weak, gnu::visibility("hidden")]] extern const std::byte tolvan_resources_begin[];
[[gnu::weak, gnu::visibility("hidden")]] extern const std::byte tolvan_resources_end[];
}

namespace Platform {

std::span<const std::byte> FindOwnResource(std::uint16_t id) {
    const std::span<const std::byte> section(tolvan_resources_begin, tolvan_resources_end);
    const auto range = FindInResourceSection(ReadFrom(section), {0, section.size()}, id);
    return range ? section.subspan(range->offset, range->size) : std::span<const std::byte>{};
}

ResourceSearch FindResourceInFile(const std::wstring& path, std::uint16_t id) {
    File file;
    if (!Succeeded(file.Open(path, OpenOptions{}))) return ResourceSearch::Unreadable;
    const ImageReader image = ReadFrom(file);
    const ResourceSearch inElf = FindElfResource(image, id).result;
    return inElf == ResourceSearch::Unreadable ? FindPeResource(image, id).result : inElf;
}

std::uint16_t ReadMachineType(const std::wstring& path) {
    File file;
    if (!Succeeded(file.Open(path, OpenOptions{}))) return 0;
    const ImageReader image = ReadFrom(file);
    const std::uint16_t machine = ReadElfMachine(image);
    return machine != 0 ? machine : ReadPeMachine(image);
}

}  // namespace Platform
