#include "patch/crc32.h"

#include <algorithm>

#include "patch/crc32_folding.h"

namespace Launcher {
namespace {

constexpr std::array<std::uint32_t, 256> MakeTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
        std::uint32_t remainder = byte;
        for (int bit = 0; bit < 8; ++bit)
            remainder = MultiplyByX(remainder);
        table[byte] = remainder;
    }
    return table;
}

constexpr auto Table = MakeTable();

bool AlwaysSupported() {
    return true;
}

constexpr Crc32Method Methods[] = {
    {"512-bit carry-less multiply", WideFoldingSupported, AdvanceByWideFolding},
    {"carry-less multiply, AVX encoding", AvxFoldingSupported, AdvanceByAvxFolding},
    {"carry-less multiply", FoldingSupported, AdvanceByFolding},
    {"byte table", AlwaysSupported, AdvanceByTable},
};

}  // namespace

std::uint32_t AdvanceByTable(std::uint32_t running, std::span<const std::byte> bytes) {
    for (const std::byte byte : bytes) {
        running = Table[(running ^ std::to_integer<std::uint32_t>(byte)) & 0xFF] ^ (running >> 8);
    }
    return running;
}

std::span<const Crc32Method> Crc32Methods() {
    return Methods;
}

void Crc32::Update(std::span<const std::byte> bytes) {
    static const auto advance = std::ranges::find_if(Methods, [](const auto& method) {
                                    return method.isSupported();
                                })->advance;
    running_ = advance(running_, bytes);
}

std::uint32_t Crc32Of(std::span<const std::byte> bytes) {
    Crc32 crc;
    crc.Update(bytes);
    return crc.Value();
}

}  // namespace Launcher
