#pragma once

#include <cstddef>
#include <vector>

namespace Platform::Win32 {

/// Some font files tell another weight in their tables than in their style's name. The name is
/// right: a file of one of the usual names gets the weight that belongs to it. Anything else,
/// damaged files too, stays as it is.
void CorrectWeight(std::vector<std::byte>& font);

}  // namespace Platform::Win32
