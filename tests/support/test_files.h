#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

/// Small helps for tests that work in the machine's files. Failures are failures of the test.
namespace TestSupport {

/// A fresh folder for the running test, without a trailing separator.
std::wstring MakeTestFolder();

std::span<const std::byte> Bytes(std::string_view text);

/// Writes the file whole: nobody sees half of it.
void WriteText(const std::wstring& path, std::string_view text);
/// The whole file; empty when it cannot be read.
std::string ReadText(const std::wstring& path);

/// All that lies below a folder, by its path from there: what a file holds, or "a folder".
std::map<std::wstring, std::string> ReadTree(const std::wstring& folder);

/// Looks every few milliseconds whether the condition holds. False when it did not in time.
bool WaitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds limit = std::chrono::seconds(30));
/// Waits until the file stands there.
bool WaitForFile(const std::wstring& path);

}  // namespace TestSupport
