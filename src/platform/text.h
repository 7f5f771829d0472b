#pragma once

#include <string>
#include <string_view>

/// Text conversion. Wide text is UTF-16 on Windows and UTF-32 on the host. Any thread.
namespace Platform {

/// Bytes that are not UTF-8 become U+FFFD.
std::wstring WideFromUtf8(std::string_view text);
/// Lone surrogates and values beyond Unicode become U+FFFD.
std::string Utf8FromWide(std::wstring_view text);

/// The platform's wide lower-casing, one character at a time, the same in every locale.
wchar_t LowerCase(wchar_t character);
std::wstring LowerCase(std::wstring_view text);
bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right);

/// Shows a line in an attached debugger, if there is one.
void WriteToDebugger(const char* line);

}  // namespace Platform
