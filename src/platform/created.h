#pragma once

#include <cstdint>
#include <memory>
#include <utility>

namespace Platform {

/// What a drawing call answers: 0 for success, otherwise the system's own number for the log
/// (on Windows an HRESULT; the host adapter uses the nearest of those).
using GraphicsResult = std::uint32_t;

inline constexpr GraphicsResult GraphicsOk = 0;
inline constexpr GraphicsResult GraphicsNotSupported = 0x80004002;  ///< no such interface
inline constexpr GraphicsResult GraphicsFailed = 0x80004005;
inline constexpr GraphicsResult GraphicsOutOfMemory = 0x8007000E;
inline constexpr GraphicsResult GraphicsTargetLost = 0x8899000C;

/// A new object, or null with the reason.
template <class T>
struct [[nodiscard]] Created {
    std::unique_ptr<T> object;
    GraphicsResult result = GraphicsOk;

    Created(GraphicsResult failure) : result(failure) {}
    template <class U>
    Created(std::unique_ptr<U> made)
        : object(std::move(made)), result(object ? GraphicsOk : GraphicsFailed) {}

    explicit operator bool() const { return object != nullptr; }
};

}  // namespace Platform
