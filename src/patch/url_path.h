#pragma once

#include <string>
#include <string_view>

namespace Launcher {

/// A file's name as the path of a URL: letters, digits and "-._~/" of its UTF-8 text stay, every
/// other byte becomes "%" and two upper-case hexadecimal digits. Any thread.
std::wstring EncodeUrlPath(std::wstring_view name);

}  // namespace Launcher
