#pragma once

#include <string>

/// Reparse points for tests: links of the host. Wine can make none.
namespace TestSupport {

/// Makes a link at the path that leads to the target, which need not exist. False where the machine
/// knows no such thing.
bool MakeLink(const std::wstring& path, const std::wstring& target);

/// Where the link itself says that it leads, in the machine's own words; empty for no link.
std::string ReadLinkText(const std::wstring& path);

}  // namespace TestSupport
