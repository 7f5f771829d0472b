#include "support/test_files.h"

#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/files.h"
#include "platform/processes.h"

namespace TestSupport {

using namespace Platform;

std::wstring MakeTestFolder() {
    static int count = 0;
    const std::wstring folder =
        L"C:\\Tests\\" + std::to_wstring(OwnProcessId()) + L"-" + std::to_wstring(++count);
    EXPECT_EQ(MakeFolderPath(folder), Error::None);
    return folder;
}

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

void WriteText(const std::wstring& path, std::string_view text) {
    const std::wstring part = path + L".part";
    File file;
    ASSERT_EQ(file.Open(part, {.access = AccessWrite, .disposition = Disposition::CreateAlways}),
              Error::None);
    ASSERT_EQ(file.Write(Bytes(text)), Error::None);
    file.Close();
    ASSERT_EQ(MovePath(part, path, {.replaceExisting = true}), Error::None);
}

std::string ReadText(const std::wstring& path) {
    File file;
    std::uint64_t size = 0;
    if (!Succeeded(file.Open(path, {})) || !Succeeded(file.GetSize(size))) return {};
    std::string text(static_cast<std::size_t>(size), '\0');
    std::size_t got = 0;
    if (!Succeeded(file.ReadAt(0, std::as_writable_bytes(std::span(text)), got))) return {};
    text.resize(got);
    return text;
}

std::map<std::wstring, std::string> ReadTree(const std::wstring& folder) {
    std::map<std::wstring, std::string> tree;
    std::vector<FolderEntry> entries;
    EXPECT_EQ(ListFolder(folder, entries), Error::None) << folder;
    for (const FolderEntry& entry : entries) {
        const std::wstring path = folder + L'\\' + entry.name;
        tree[entry.name] = entry.IsFolder() ? "a folder" : ReadText(path);
        if (!entry.IsFolder() || entry.IsReparsePoint()) continue;
        for (auto& [name, content] : ReadTree(path))
            tree[entry.name + L'\\' + name] = std::move(content);
    }
    return tree;
}

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        SleepMilliseconds(2);
    }
    return true;
}

bool WaitForFile(const std::wstring& path) {
    return WaitUntil([&] { return PathExists(path); });
}

}  // namespace TestSupport
