#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The words that the player reads, by key and language. The table is written once, before any
/// other thread runs, and only read afterwards.
namespace Launcher {

/// Index of the language that the pages show, in the order of the text table.
extern std::int32_t g_currentLanguage;

/// The text of a key in a language; the English one where the language has none; an empty text for
/// a key that nobody knows, never the key itself.
const std::wstring& Tr(std::int32_t language, std::string_view key);

}  // namespace Launcher
