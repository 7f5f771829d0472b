#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Publish {

/// Calls work with every index below count, on so many threads, and returns what went wrong: the
/// texts of the exceptions, in the order of their indices.
std::vector<std::string> ForEach(std::size_t count, unsigned threads,
                                 const std::function<void(std::size_t index)>& work);

}  // namespace Publish
