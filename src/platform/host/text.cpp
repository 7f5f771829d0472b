#include "platform/text.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <locale.h>
#include <mutex>
#include <utf8.h>
#include <wctype.h>

#include "platform/clock.h"

namespace Platform {

namespace {

constexpr char32_t Replacement = 0xFFFD;

// A locale of our own: the process's may be anything, and changes with setlocale.
locale_t UnicodeLocale() {
    static const locale_t locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

bool HasTracer() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("TracerPid:")) return line.find_first_of("123456789") != line.npos;
    }
    return false;
}

// Asked for every line of the log, and dear at a start: the kernel writes the whole file for each
// look. Who attaches later misses no more than a second.
bool IsTraced() {
    static std::mutex lock;
    static std::uint64_t lookAgainAt = 0;
    static bool isTraced = false;
    const std::lock_guard guard(lock);
    const std::uint64_t now = TickMilliseconds();
    if (now >= lookAgainAt) {
        lookAgainAt = now + 1000;
        isTraced = HasTracer();
    }
    return isTraced;
}

}  // namespace

std::wstring WideFromUtf8(std::string_view text) {
    std::string valid;
    if (utf8::find_invalid(text.begin(), text.end()) != text.end()) {
        utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid), Replacement);
        text = valid;
    }
    std::wstring wide;
    wide.reserve(text.size());
    utf8::unchecked::utf8to32(text.begin(), text.end(), std::back_inserter(wide));
    return wide;
}

std::string Utf8FromWide(std::wstring_view text) {
    std::string narrow;
    narrow.reserve(text.size());
    for (const wchar_t character : text) {
        const auto codePoint = static_cast<char32_t>(character);
        const bool isScalar = codePoint < 0xD800 || (codePoint > 0xDFFF && codePoint <= 0x10FFFF);
        utf8::unchecked::append(isScalar ? codePoint : Replacement, std::back_inserter(narrow));
    }
    return narrow;
}

wchar_t LowerCase(wchar_t character) {
    if (character >= 0 && character < 0x80) {
        return character >= L'A' && character <= L'Z' ? character + (L'a' - L'A') : character;
    }
    return static_cast<wchar_t>(::towlower_l(static_cast<wint_t>(character), UnicodeLocale()));
}

std::wstring LowerCase(std::wstring_view text) {
    std::wstring lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](wchar_t character) { return LowerCase(character); });
    return lower;
}

bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](wchar_t a, wchar_t b) { return LowerCase(a) == LowerCase(b); });
}

void WriteToDebugger(const char* line) {
    // A debugger shows what its program writes to standard error.
    if (IsTraced()) std::fputs(line, stderr);
}

}  // namespace Platform
