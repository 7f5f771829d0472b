#include "platform/executable_image.h"

#include <gtest/gtest.h>
#include <string_view>

#include "platform/resources.h"

using namespace Platform;

namespace {

constexpr std::uint16_t MarkerId = 1;
constexpr std::string_view Marker = "TOLVAN-LAUNCHER";

// The images that this test carries in its own resources.
constexpr std::uint16_t Pe32Marker = 101;
constexpr std::uint16_t Pe64Marker = 102;
constexpr std::uint16_t Pe64Other = 103;
constexpr std::uint16_t Elf32Marker = 104;
constexpr std::uint16_t Elf64Marker = 105;
constexpr std::uint16_t Elf64Plain = 106;

std::string_view TextAt(std::span<const std::byte> image, const ImageRange& range) {
    const std::string_view text(reinterpret_cast<const char*>(image.data()), image.size());
    return text.substr(range.offset, range.size);
}

}  // namespace

TEST(ExecutableImage, BothFormatsAreRead) {
    const struct {
        std::uint16_t image;
        std::uint16_t peMachine;
        std::uint16_t elfMachine;
        ResourceSearch inPe;
        ResourceSearch inElf;
    } cases[] = {
        {Pe32Marker, MachineX86, 0, ResourceSearch::Found, ResourceSearch::Unreadable},
        {Pe64Marker, MachineX64, 0, ResourceSearch::Found, ResourceSearch::Unreadable},
        {Pe64Other, MachineX64, 0, ResourceSearch::NotFound, ResourceSearch::Unreadable},
        {Elf32Marker, 0, MachineX86, ResourceSearch::Unreadable, ResourceSearch::Found},
        {Elf64Marker, 0, MachineX64, ResourceSearch::Unreadable, ResourceSearch::Found},
        {Elf64Plain, 0, MachineX64, ResourceSearch::Unreadable, ResourceSearch::NotFound},
    };
    for (const auto& [id, peMachine, elfMachine, inPe, inElf] : cases) {
        const std::span<const std::byte> bytes = FindOwnResource(id);
        const ImageReader image = ReadFrom(bytes);
        EXPECT_EQ(ReadPeMachine(image), peMachine) << id;
        EXPECT_EQ(ReadElfMachine(image), elfMachine) << id;
        for (const auto& [search, expected] :
             {std::pair(FindPeResource(image, MarkerId), inPe),
              std::pair(FindElfResource(image, MarkerId), inElf)}) {
            EXPECT_EQ(search.result, expected) << id;
            if (search.result != ResourceSearch::Found) continue;
            EXPECT_EQ(TextAt(bytes, search.range), Marker) << id;
        }
    }
}

TEST(ExecutableImage, ACutImageNeverGivesMoreThanItHas) {
    for (const std::uint16_t id : {Pe32Marker, Pe64Marker, Elf32Marker, Elf64Marker}) {
        const std::span<const std::byte> whole = FindOwnResource(id);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            const ImageReader cut = ReadFrom(whole.first(size));
            for (const ImageSearch& search :
                 {FindPeResource(cut, MarkerId), FindElfResource(cut, MarkerId)}) {
                if (search.result != ResourceSearch::Found) continue;
                EXPECT_LE(search.range.offset + search.range.size, size) << id;
            }
        }
    }
}
