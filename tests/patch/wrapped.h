#pragma once

#include <string>
#include <string_view>

#include "patch/crc32.h"
#include "patch/file_wrapper.h"

namespace Launcher {

/// The payload in its wrapper.
inline std::string Wrapped(std::string_view payload) {
    const auto text = [](std::span<const std::byte> bytes) {
        return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    return text(MakeWrapperHeader(payload.size())) + std::string(payload) +
           text(MakeWrapperTrailer(Crc32Of(std::as_bytes(std::span(payload)))));
}

}  // namespace Launcher
