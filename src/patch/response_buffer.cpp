#include "patch/response_buffer.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace tolvanweb {

namespace {

constexpr std::uint32_t FirstCapacity = 1024;

}  // namespace

ResponseBuffer::ResponseBuffer() : data_(new (std::nothrow) std::byte[FirstCapacity]) {
    capacity_ = data_ ? FirstCapacity : 0;
}

bool ResponseBuffer::Append(std::span<const std::byte> bytes) {
    const auto capacity = GrownCapacity(capacity_, std::uint64_t{size_} + bytes.size());
    if (!capacity) return false;
    if (*capacity != capacity_) {
        std::unique_ptr<std::byte[]> grown(new (std::nothrow) std::byte[*capacity]);
        if (!grown) return false;
        std::copy_n(data_.get(), size_, grown.get());
        data_ = std::move(grown);
        capacity_ = *capacity;
    }
    std::copy(bytes.begin(), bytes.end(), data_.get() + size_);
    size_ += static_cast<std::uint32_t>(bytes.size());
    return true;
}

std::optional<std::uint32_t> GrownCapacity(std::uint32_t capacity, std::uint64_t needed) {
    std::uint64_t grown = capacity;
    if (needed > grown) grown = std::max<std::uint64_t>(grown, FirstCapacity);
    while (grown < needed)
        grown *= 2;
    if (grown > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    return static_cast<std::uint32_t>(grown);
}

}  // namespace tolvanweb
