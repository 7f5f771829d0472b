#include "patch/old_copies.h"

#include <set>
#include <vector>

#include "patch/file_names.h"
#include "platform/files.h"
#include "platform/text.h"

namespace Launcher {
namespace {

constexpr std::wstring_view Prefix = L"old";
constexpr std::wstring_view RecordSuffix = L".from";
constexpr int MaximumTries = 64;
constexpr std::size_t LongestRecord = std::size_t{64} * 1024;

bool IsOldCopy(const Platform::FolderEntry& entry) {
    const auto beginning = std::wstring_view(entry.name).substr(0, Prefix.size());
    return !entry.IsFolder() && Platform::EqualIgnoringCase(beginning, Prefix);
}

/// A copy keeps its attributes, and a read-only file cannot be deleted. What cannot be deleted now
/// is tried again by the next pass.
void Delete(const std::wstring& path) {
    (void)Platform::ChangeAttributes(path, Platform::AttributeNormal);
    (void)Platform::RemoveFile(path);
}

std::wstring ReadText(const std::wstring& path) {
    Platform::File file;
    std::string text(LongestRecord, '\0');
    std::size_t length = 0;
    if (!Platform::Succeeded(file.Open(path, {})) ||
        !Platform::Succeeded(file.Read(std::as_writable_bytes(std::span(text)), length))) {
        return {};
    }
    return Platform::WideFromUtf8(std::string_view(text).substr(0, length));
}

}  // namespace

OldCopies::OldCopies(std::wstring installFolder) : installFolder_(std::move(installFolder)) {}

void OldCopies::CleanUp() const {
    std::vector<Platform::FolderEntry> entries;
    if (!Platform::Succeeded(Platform::ListFolder(installFolder_, entries))) return;
    std::erase_if(entries, [](const auto& entry) { return !IsOldCopy(entry); });
    std::set<std::wstring> needed;
    for (const Platform::FolderEntry& entry : entries) {
        if (!entry.name.ends_with(RecordSuffix)) continue;
        const std::wstring copy = entry.name.substr(0, entry.name.size() - RecordSuffix.size());
        if (!MoveBack(copy)) needed.insert({copy, entry.name});
    }
    for (const Platform::FolderEntry& entry : entries) {
        if (!needed.contains(entry.name)) Delete(installFolder_ + entry.name);
    }
}

std::wstring OldCopies::MoveAside(const std::wstring& path) {
    for (int i = 0; i < MaximumTries; ++i) {
        std::wstring copy = installFolder_ + std::wstring(Prefix) + std::to_wstring(counter_++);
        if (Platform::PathExists(copy) || !WriteRecord(copy, path)) continue;
        if (Platform::Succeeded(Platform::MovePath(path, copy, {.replaceExisting = true}))) {
            return copy;
        }
        Settle(copy);
    }
    return {};
}

void OldCopies::Settle(const std::wstring& copy) const {
    Delete(copy + std::wstring(RecordSuffix));
}

bool OldCopies::WriteRecord(const std::wstring& copy, const std::wstring& path) const {
    const std::string text = Platform::Utf8FromWide(path.substr(installFolder_.size()));
    Platform::File record;
    return Platform::Succeeded(record.Open(copy + std::wstring(RecordSuffix),
                                           {.access = Platform::AccessWrite,
                                            .disposition = Platform::Disposition::CreateAlways})) &&
           Platform::Succeeded(record.Write(std::as_bytes(std::span(text))));
}

/// True when the copy is at its place, or not needed there. A record is a file like others, and a
/// hostile list may have brought it: it is believed only where it stays in the folder.
bool OldCopies::MoveBack(const std::wstring& copy) const {
    const std::wstring from = installFolder_ + copy;
    const std::wstring path = ReadText(from + std::wstring(RecordSuffix));
    if (!IsPathInsideFolder(path) || !Platform::PathExists(from)) return true;
    const Platform::Error error = Platform::MovePath(from, installFolder_ + path, {});
    return Platform::Succeeded(error) || Platform::PathExists(installFolder_ + path);
}

}  // namespace Launcher
