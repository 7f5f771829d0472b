#include "platform/text.h"

#include <windows.h>

namespace Platform {

namespace {

int Length(std::size_t size) {
    return static_cast<int>(size);
}

/// Simple case mapping of the invariant locale: one unit for one, in every script.
void LowerCaseInPlace(const wchar_t* from, wchar_t* to, std::size_t size) {
    LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, from, Length(size), to, Length(size),
                  nullptr, nullptr, 0);
}

}  // namespace

std::wstring WideFromUtf8(std::string_view text) {
    if (text.empty()) return {};
    const int size = MultiByteToWideChar(CP_UTF8, 0, text.data(), Length(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), Length(text.size()), wide.data(), size);
    return wide;
}

std::string Utf8FromWide(std::wstring_view text) {
    if (text.empty()) return {};
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), Length(text.size()), nullptr, 0,
                                         nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), Length(text.size()), narrow.data(), size, nullptr,
                        nullptr);
    return narrow;
}

wchar_t LowerCase(wchar_t character) {
    wchar_t lower = character;
    LowerCaseInPlace(&character, &lower, 1);
    return lower;
}

std::wstring LowerCase(std::wstring_view text) {
    std::wstring lower(text);
    if (!text.empty()) LowerCaseInPlace(text.data(), lower.data(), text.size());
    return lower;
}

bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right) {
    return left.size() == right.size() && LowerCase(left) == LowerCase(right);
}

void WriteToDebugger(const char* line) {
    OutputDebugStringA(line);
}

}  // namespace Platform
