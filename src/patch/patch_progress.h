#pragma once

#include <cstdint>
#include <string>

#include "common/state.h"

namespace Launcher {

/// What a patch pass shows of itself.
struct PatchProgress {
    State state = State::Boot;  ///< Boot until the first pass
    float fraction = 0;         ///< 0 to 1 over each of Compare, Update and Verify; 1 in Ready
    std::int32_t filesDone = 0;
    std::int32_t filesTotal = 0;
    std::uint64_t bytesDone = 0;
    std::uint64_t bytesTotal = 0;
    double bytesPerSecond = 0;  ///< the last that was measured
    std::wstring currentFile;   ///< relative to the install folder; empty between files
    std::uint64_t fileBytesDone = 0;
    std::uint64_t fileBytesTotal = 0;
    std::wstring errorText;  ///< for an error state
};

}  // namespace Launcher
