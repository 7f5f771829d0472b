#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "patch/file_wrapper.h"

using namespace Launcher;

namespace {

void Demand(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

/// The input is a header and, behind it, what the file's size is said to be.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    WrapperHeader header{};
    std::memcpy(header.data(), data, std::min(size, header.size()));
    std::uint64_t fileSize = size;
    if (size >= header.size() + sizeof(fileSize)) {
        std::memcpy(&fileSize, data + header.size(), sizeof(fileSize));
    }
    const auto payloadSize = WrappedPayloadSize(header, fileSize);
    if (!payloadSize) return 0;

    // A reader may trust what it is told: header, payload and trailer are the file.
    Demand(fileSize >= WrapperOverhead && *payloadSize == fileSize - WrapperOverhead);
    WrapperHeader made = MakeWrapperHeader(*payloadSize);
    std::copy_n(header.begin() + 4, 4, made.begin() + 4);
    Demand(made == header);
    return 0;
}
