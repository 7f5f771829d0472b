#pragma once

#include <cstdint>

namespace Platform {

/// The pointer shapes that the program shows, by the system's own pictures.
enum class CursorShape : std::uint8_t { Arrow, Hand, TextBeam };

}  // namespace Platform
