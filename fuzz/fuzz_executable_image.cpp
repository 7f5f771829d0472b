#include <cstdint>
#include <cstdlib>

#include "platform/executable_image.h"

using namespace Platform;

namespace {

/// Ends the process, which is what the fuzzer takes for a finding.
void Demand(bool condition) {
    if (!condition) std::abort();
}

void DemandInside(const ImageSearch& search, std::size_t size) {
    if (search.result != ResourceSearch::Found || search.range.size == 0) return;
    Demand(search.range.offset <= size && search.range.size <= size - search.range.offset);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto bytes = std::as_bytes(std::span(data, size));
    const ImageReader memory = ReadFrom(bytes);
    std::size_t read = 0;
    const ImageReader image = [&](std::uint64_t offset, std::span<std::byte> buffer) {
        const std::size_t count = memory(offset, buffer);
        read += count;
        return count;
    };
    // What the program asks for: the machine, and the marker.
    static_cast<void>(ReadPeMachine(image));
    static_cast<void>(ReadElfMachine(image));
    DemandInside(FindPeResource(image, 1), size);
    DemandInside(FindElfResource(image, 1), size);
    // However the image lies, it is looked at and not read through.
    Demand(read < 256 * 1024);
    return 0;
}
