#include "update/launcher_swap.h"

#include "common/path_text.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/processes.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr int OldNames = 64;
constexpr const wchar_t* OldMark = L".old";

bool Move(const std::wstring& from, const std::wstring& to) {
    return Platform::Succeeded(Platform::MovePath(from, to, {.writeThrough = true}));
}

/// A launcher that was renamed into place but is not on the disk would be lost by a power cut.
void FlushFile(const std::wstring& path) {
    Platform::File file;
    // Should it fail, the swap is as safe as the disk's own cache.
    if (Platform::Succeeded(file.Open(path, {.access = Platform::AccessWrite}))) (void)file.Flush();
}

}  // namespace

std::wstring StagedLauncherPath(const std::wstring& running) {
    return running + L".new";
}

bool LauncherSwap::Swap() {
    const std::wstring staged = StagedLauncherPath(running_);
    if (running_.empty() || !Platform::PathExists(staged)) return false;
    FlushFile(staged);
    if (!MoveAside()) return false;
    if (Move(staged, running_)) return true;
    RestoreRunning();
    return false;
}

bool LauncherSwap::MoveAside() {
    for (int number = 0; number < OldNames; ++number) {
        std::wstring candidate = running_ + OldMark + std::to_wstring(number);
        if (Platform::PathExists(candidate) || !Move(running_, candidate)) continue;
        aside_ = std::move(candidate);
        return true;
    }
    return false;
}

void LauncherSwap::RestoreRunning() {
    if (Move(aside_, running_)) return;
    // A launcher has to stand under its name, whatever it takes; the old copy goes at a later
    // start.
    (void)Platform::CopyFileTo(aside_, running_, false);
}

void LauncherSwap::Undo() {
    const std::wstring staged = StagedLauncherPath(running_);
    if (Move(running_, staged)) RestoreRunning();
}

bool StartSwappedLauncher(const std::wstring& launcher, std::optional<WindowPosition> position) {
    std::wstring commandLine = L"\"" + launcher + L"\"";
    if (position) {
        commandLine += L" --x=" + std::to_wstring(position->x);
        commandLine += L" --y=" + std::to_wstring(position->y);
    }
    commandLine += L" --waitpid=" + std::to_wstring(Platform::OwnProcessId());
    std::uint32_t processId = 0;
    return Platform::Succeeded(Platform::StartProcess(
        {.application = launcher, .commandLine = commandLine, .workingFolder = FolderOf(launcher)},
        processId));
}

void DeleteSelfUpdateLeftovers() {
    const std::wstring running = Platform::OwnPath();
    if (running.empty()) return;
    // Mostly there is nothing to delete, and what is still locked goes at a later start.
    (void)Platform::RemoveFile(StagedLauncherPath(running));
    const std::wstring folder = FolderOf(running);
    const std::wstring prefix = Platform::LowerCase(FileNameOf(running) + OldMark);
    std::vector<Platform::FolderEntry> entries;
    if (!Platform::Succeeded(Platform::ListFolder(folder, entries))) return;
    for (const Platform::FolderEntry& entry : entries) {
        if (entry.IsFolder() || !Platform::LowerCase(entry.name).starts_with(prefix)) continue;
        const std::wstring old = folder + L"\\" + entry.name;
        (void)Platform::ChangeAttributes(old, Platform::AttributeNormal);
        (void)Platform::RemoveFile(old);
    }
}

}  // namespace Launcher
