#pragma once

#include <cstddef>
#include <span>

#include "platform/created.h"

namespace Platform {

/// Fonts that only this program sees, from memory. The files are gathered first and then built
/// into one collection, from which TextFormatSpec::privateFamily takes its faces. Message thread,
/// before any other thread draws or measures.
class PrivateFonts {
public:
    virtual ~PrivateFonts() = default;

    /// Copies the bytes of a font file. GraphicsNotSupported when the system is too old for it.
    [[nodiscard]] virtual GraphicsResult AddFile(std::span<const std::byte> file) = 0;
    /// Makes the collection of all files so far; an earlier one is replaced.
    [[nodiscard]] virtual GraphicsResult BuildCollection() = 0;
};

}  // namespace Platform
