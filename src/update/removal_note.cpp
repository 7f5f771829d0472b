#include "update/removal_note.h"

#include <span>

#include "common/boot_log.h"
#include "common/path_text.h"
#include "install/folder_tree.h"
#include "install/path_resolution.h"
#include "install/settings_store.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace Launcher {

namespace {

using Platform::Succeeded;

/// Longer than any path with an identity.
constexpr std::uint64_t LargestNote = std::uint64_t{128} * 1024;

std::wstring NoteOf(const std::wstring& workingFolder) {
    return JoinPath(workingFolder, L"removal.txt");
}

std::wstring OwnNote() {
    return NoteOf(FolderOf(Platform::OwnPath()));
}

std::wstring IdentityOf(const std::wstring& folder) {
    std::wstring identity;
    return Succeeded(Platform::GetIdentity(folder, identity)) ? identity : std::wstring();
}

/// Two lines. Both empty without a readable note.
struct Note {
    std::wstring folder;
    std::wstring identity;
};

std::wstring ReadNoteText(const std::wstring& path) {
    Platform::File file;
    std::uint64_t size = 0;
    if (!Succeeded(file.Open(path, {})) || !Succeeded(file.GetSize(size)) || size > LargestNote) {
        return {};
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    std::size_t got = 0;
    const auto bytes = std::as_writable_bytes(std::span(text));
    if (!Succeeded(file.ReadAt(0, bytes, got)) || got != text.size()) return {};
    return Platform::WideFromUtf8(text);
}

Note ReadNote(const std::wstring& path) {
    const std::wstring text = ReadNoteText(path);
    const std::size_t end = text.find(L'\n');
    if (end == std::wstring::npos) return {};
    return {.folder = text.substr(0, end), .identity = text.substr(end + 1)};
}

}  // namespace

void NoteRemoval(const std::wstring& folder) {
    Platform::File file;
    const std::string text = Platform::Utf8FromWide(folder + L'\n' + IdentityOf(folder));
    // Whole or not at all: a part of a path would name another folder.
    const std::wstring unfinished = OwnNote() + L".part";
    const bool written =
        Succeeded(file.Open(unfinished, {.access = Platform::AccessWrite,
                                         .disposition = Platform::Disposition::CreateAlways})) &&
        Succeeded(file.Write(std::as_bytes(std::span(text)))) && Succeeded(file.Flush());
    file.Close();
    if (!written ||
        !Succeeded(Platform::MovePath(unfinished, OwnNote(), {.replaceExisting = true}))) {
        BootLog("uninstall: no note could be left for the case that this run is cut off");
    }
}

void DropRemovalNote() {
    (void)Platform::RemoveFile(OwnNote());
}

bool FinishNotedRemoval(const std::wstring& workingFolder) {
    const auto& [folder, identity] = ReadNote(NoteOf(workingFolder));
    // What has come to the place meanwhile is somebody's own.
    if (identity.empty() || IdentityOf(folder) != identity) return true;
    if (IsSameOrInside(GetInstallLocation(), folder)) return true;
    if (IsSameOrInside(FolderOf(Platform::OwnPath()), folder)) return false;
    BootLog("uninstall: finishing a removal that was cut off");
    return RemoveInstallFolder(folder, nullptr) || IsProtectedFromDeletion(folder);
}

}  // namespace Launcher
