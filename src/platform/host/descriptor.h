#pragma once

#include <unistd.h>
#include <utility>

namespace Platform::Host {

/// Owns a file descriptor.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() { Reset(); }
    Descriptor(Descriptor&& other) noexcept : descriptor_(other.Release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) Reset(other.Release());
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    explicit operator bool() const { return descriptor_ >= 0; }
    int Get() const { return descriptor_; }
    int Release() { return std::exchange(descriptor_, -1); }
    void Reset(int descriptor = -1) {
        if (descriptor_ >= 0) close(descriptor_);
        descriptor_ = descriptor;
    }

private:
    int descriptor_ = -1;
};

}  // namespace Platform::Host
