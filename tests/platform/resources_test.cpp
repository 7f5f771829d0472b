#include "platform/resources.h"

#include <gtest/gtest.h>
#include <string_view>

#include "platform/executable_image.h"
#include "support/helper_process.h"
#include "support/test_files.h"

using namespace Platform;
using namespace TestSupport;

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

std::string_view OwnText(std::uint16_t id) {
    const std::span<const std::byte> bytes = FindOwnResource(id);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string_view TextAt(std::string_view image, const ImageRange& range) {
    return image.substr(range.offset, range.size);
}

}  // namespace

TEST(Resources, OwnOnesAreFoundById) {
    EXPECT_EQ(OwnText(MarkerId), Marker);
    EXPECT_EQ(OwnText(Pe32Marker).substr(0, 2), "MZ");
    EXPECT_EQ(OwnText(Elf64Plain).substr(1, 3), "ELF");
    EXPECT_TRUE(FindOwnResource(2).empty());
    EXPECT_TRUE(FindOwnResource(0xFFFF).empty());
}

TEST(Resources, AnotherExecutableIsLookedThrough) {
    const std::wstring folder = MakeTestFolder();
    const struct {
        std::string_view content;
        std::uint16_t id;
        ResourceSearch search;
        std::uint16_t machine;
    } cases[] = {
        {OwnText(Pe32Marker), MarkerId, ResourceSearch::Found, MachineX86},
        {OwnText(Pe64Marker), MarkerId, ResourceSearch::Found, MachineX64},
        {OwnText(Pe64Marker), 2, ResourceSearch::NotFound, MachineX64},
        {OwnText(Pe64Other), MarkerId, ResourceSearch::NotFound, MachineX64},
        {"MZ, and nothing that makes an image of it", MarkerId, ResourceSearch::Unreadable, 0},
        {"", MarkerId, ResourceSearch::Unreadable, 0},
    };
    const std::wstring path = folder + L"\\file.exe";
    for (const auto& [content, id, search, machine] : cases) {
        WriteText(path, content);
        EXPECT_EQ(FindResourceInFile(path, id), search) << content.substr(0, 20);
        EXPECT_EQ(ReadMachineType(path), machine) << content.substr(0, 20);
    }
    WriteText(path, OwnText(HelperResource));
    EXPECT_EQ(FindResourceInFile(path, MarkerId), ResourceSearch::NotFound);
    EXPECT_NE(ReadMachineType(path), 0);
    for (const std::wstring& none : {folder + L"\\missing.exe", folder}) {
        EXPECT_EQ(FindResourceInFile(none, MarkerId), ResourceSearch::Unreadable);
        EXPECT_EQ(ReadMachineType(none), 0);
    }
}

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
        const ImageReader image = ReadFrom(FindOwnResource(id));
        EXPECT_EQ(ReadPeMachine(image), peMachine) << id;
        EXPECT_EQ(ReadElfMachine(image), elfMachine) << id;
        for (const auto& [search, expected] :
             {std::pair(FindPeResource(image, MarkerId), inPe),
              std::pair(FindElfResource(image, MarkerId), inElf)}) {
            EXPECT_EQ(search.result, expected) << id;
            if (search.result != ResourceSearch::Found) continue;
            EXPECT_EQ(TextAt(OwnText(id), search.range), Marker) << id;
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
