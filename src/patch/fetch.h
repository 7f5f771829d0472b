#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

/// Fetching by GET with checked certificates: a session per call, 8 s to connect, 15 s to send,
/// 20 s of silence, and no status but 200. The calls block; they share nothing and may come from
/// any thread. Their callables run on the calling thread.
///
/// They answer whether all went well. If not, errorText, where it is given, receives an English
/// text; after a cancel it is left as it was.
namespace Launcher {

/// Bytes of the file so far, and its length, or the same number again where that is unknown.
using FetchProgress = std::function<void(std::uint64_t done, std::uint64_t total)>;
/// Asked before each block, and several times a second while the network is silent where the
/// platform can be woken. A true answer ends the fetch.
using FetchCancelled = std::function<bool()>;
/// Gets each block after it was written.
using FetchSink = std::function<void(std::span<const std::byte> bytes)>;

/// Streams the URL into the destination, whose folder is made where it is missing. On failure and
/// after a cancel nothing is left at the destination, not even what stood there before.
[[nodiscard]] bool FetchFile(const std::wstring& url, const std::wstring& destination,
                             const FetchProgress& progress, const FetchCancelled& cancelled,
                             std::wstring* errorText, const FetchSink& sink);

/// Reads the URL into text, which may not be longer than maxBytes nor empty. text is empty after a
/// failure.
[[nodiscard]] bool FetchText(const std::wstring& url, std::string& text, std::wstring* errorText,
                             std::size_t maxBytes, const FetchCancelled& cancelled);

/// The CRC-32 of a whole file; 0 when it is empty, missing or cannot be read.
std::uint32_t CrcOfFile(const std::wstring& path);

}  // namespace Launcher
