#include "support/test_folder.h"

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

#include "platform/files.h"
#include "platform/text.h"
#include "support/test_files.h"

namespace {

using Visit = std::function<void(const std::wstring& path, bool isFolder)>;

/// Depth first, a folder after what it holds. Links are not followed.
void Walk(const std::wstring& folder, const Visit& visit) {
    std::vector<Platform::FolderEntry> entries;
    if (!Platform::Succeeded(Platform::ListFolder(folder, entries))) return;
    for (const Platform::FolderEntry& entry : entries) {
        const std::wstring path = folder + entry.name;
        if (entry.IsFolder() && !entry.IsReparsePoint()) Walk(path + L"\\", visit);
        visit(path, entry.IsFolder());
    }
}

void Check(bool succeeded, const char* what, const std::wstring& path) {
    if (!succeeded) throw std::runtime_error(what + Platform::Utf8FromWide(path));
}

}  // namespace

TestFolder::TestFolder() : path_(TestSupport::MakeTestFolder() + L'\\') {}

TestFolder::~TestFolder() {
    Walk(path_, [](const std::wstring& path, bool isFolder) {
        (void)Platform::ChangeAttributes(path, Platform::AttributeNormal);
        (void)(isFolder ? Platform::RemoveEmptyFolder(path) : Platform::RemoveFile(path));
    });
    (void)Platform::RemoveEmptyFolder(path_);
    EXPECT_FALSE(Platform::PathExists(path_)) << Platform::Utf8FromWide(path_);
}

void TestFolder::Write(const std::wstring& relative, const std::string& bytes) const {
    const std::wstring path = Path(relative);
    (void)Platform::MakeFolderPath(path.substr(0, path.find_last_of(L"\\/")));
    Platform::File file;
    Check(Platform::Succeeded(
              file.Open(path, {.access = Platform::AccessWrite,
                               .disposition = Platform::Disposition::CreateAlways})) &&
              Platform::Succeeded(file.Write(std::as_bytes(std::span(bytes)))),
          "cannot write ", path);
}

std::optional<std::string> TestFolder::Read(const std::wstring& relative) const {
    Platform::File file;
    std::uint64_t size = 0;
    if (!Platform::Succeeded(file.Open(Path(relative), {})) ||
        !Platform::Succeeded(file.GetSize(size))) {
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(size), '\0');
    std::size_t got = 0;
    Check(Platform::Succeeded(file.ReadAt(0, std::as_writable_bytes(std::span(bytes)), got)) &&
              got == bytes.size(),
          "cannot read ", relative);
    return bytes;
}

std::map<std::wstring, std::string> TestFolder::Files() const {
    std::map<std::wstring, std::string> files;
    Walk(path_, [&](const std::wstring& path, bool isFolder) {
        if (isFolder) return;
        const std::wstring relative = path.substr(path_.size());
        files[relative] = Read(relative).value_or("(cannot be read)");
    });
    return files;
}
