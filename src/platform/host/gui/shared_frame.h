#pragma once

#include <cstddef>

#include "platform/geometry.h"
#include "platform/host/descriptor.h"

namespace Platform::Host {

/// Memory of four bytes a pixel that can be handed to another process by its descriptor.
class SharedFrame {
public:
    SharedFrame() = default;
    ~SharedFrame() { Release(); }
    SharedFrame(const SharedFrame&) = delete;
    SharedFrame& operator=(const SharedFrame&) = delete;

    /// Replaces what there was. False when there is no memory.
    [[nodiscard]] bool Allocate(Size size);
    void Release();

    Size GetSize() const { return size_; }
    std::size_t Stride() const { return static_cast<std::size_t>(size_.width) * 4; }
    std::byte* Pixels() const { return pixels_; }
    /// A copy of the descriptor, for whoever takes it over.
    Descriptor DuplicateDescriptor() const;

private:
    std::size_t Bytes() const { return Stride() * static_cast<std::size_t>(size_.height); }

    Descriptor memory_;
    Size size_;
    std::byte* pixels_ = nullptr;
};

}  // namespace Platform::Host
