#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

namespace tolvanweb {

/// A growing row of bytes that never shrinks and never passes 32 bits. Not synchronised.
class ResponseBuffer {
public:
    ResponseBuffer();

    /// False, with nothing changed, when the buffer cannot grow.
    [[nodiscard]] bool Append(std::span<const std::byte> bytes);
    /// Keeps the memory.
    void Clear() { size_ = 0; }

    std::span<const std::byte> Bytes() const { return {data_.get(), size_}; }
    std::uint32_t Size() const { return size_; }
    std::uint32_t Capacity() const { return capacity_; }

private:
    std::unique_ptr<std::byte[]> data_;
    std::uint32_t capacity_ = 0;
    std::uint32_t size_ = 0;
};

/// The capacity, doubled until it holds needed bytes; none when it would pass 32 bits.
std::optional<std::uint32_t> GrownCapacity(std::uint32_t capacity, std::uint64_t needed);

}  // namespace tolvanweb
