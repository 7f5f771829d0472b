#pragma once

#include <string>
#include <string_view>

/// Paths as the system understands them. Pure; no disk is looked at.
namespace Launcher {

/// The full path with one form for each place: "\" between parts, no doubled or trailing ones, "."
/// and ".." worked out, blanks and dots at the end of a part dropped as the system drops them,
/// device prefixes ("\\?\", "\\.\") taken off. Empty for a path that is not full, or that climbs
/// above its root.
std::wstring ResolvePath(std::wstring_view path);

/// Whether path, resolved like folder, is that folder or lies below it. Case does not count.
bool IsSameOrInside(std::wstring_view path, std::wstring_view folder);

}  // namespace Launcher
