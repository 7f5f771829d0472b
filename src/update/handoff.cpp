#include "update/handoff.h"

#include <algorithm>
#include <vector>

#include "common/path_text.h"
#include "install/folder_tree.h"
#include "install/game_folder.h"
#include "install/path_resolution.h"
#include "install/path_rules.h"
#include "platform/files.h"
#include "platform/late_removal.h"
#include "platform/paths.h"
#include "platform/processes.h"
#include "update/removal_note.h"

namespace Launcher {

namespace {

using Platform::Succeeded;

constexpr std::wstring_view WorkingPrefix = L"@tolvan_op_";

/// Long enough for the process to have ended.
constexpr unsigned RemovalDelaySeconds = 3;

const wchar_t* NameOf(HandoffOperation op) {
    return op == HandoffOperation::Move ? L"move" : L"uninstall";
}

const wchar_t* Digit(bool flag) {
    return flag ? L"1" : L"0";
}

/// Empty without a temporary folder.
std::wstring WorkingFolder() {
    const std::wstring temporary = Platform::GetTempFolder();
    if (temporary.empty()) return {};
    return temporary + std::wstring(WorkingPrefix) + std::to_wstring(Platform::OwnProcessId());
}

/// Whatever lies there under this process's id comes from an earlier one that had it.
bool MakeWorkingFolder(const std::wstring& folder) {
    static bool made = false;
    if (folder.empty()) return false;
    if (!made && Platform::PathExists(folder) && !RemoveInstallFolder(folder, nullptr)) {
        return false;
    }
    made = CreateFolderPath(folder);
    return made;
}

std::vector<std::wstring> FoldersInUse() {
    std::vector<std::wstring> folders;
    for (const Platform::RunningProcess& process : Platform::ListProcesses()) {
        folders.push_back(FolderOf(Platform::GetProcessImagePath(process.id)));
    }
    return folders;
}

}  // namespace

std::wstring QuoteArgument(const std::wstring& text) {
    return L"\"" + text + L"\"";
}

std::wstring HandoffCommandLine(const std::wstring& copy, const HandoffRequest& request,
                                std::uint32_t originalId) {
    std::wstring line = QuoteArgument(copy);
    line += std::wstring(L" --op=") + NameOf(request.op);
    line += L" --target=" + QuoteArgument(request.target);
    line += std::wstring(L" --keepsettings=") + Digit(request.keepSettings);
    line += std::wstring(L" --sub=") + Digit(request.sub);
    line += L" --waitpid=" + std::to_wstring(originalId);
    line += L" --x=" + std::to_wstring(request.position.x);
    line += L" --y=" + std::to_wstring(request.position.y);
    if (!request.dest.empty()) line += L" --dest=" + QuoteArgument(request.dest);
    return line;
}

bool SpawnHandoff(const HandoffRequest& request, std::wstring& errorText) {
    const auto fail = [&](const wchar_t* text) {
        errorText = text;
        return false;
    };
    // A quotation mark is in no path, and would end the argument.
    const bool readable = (request.target + request.dest).find(L'"') == std::wstring::npos;
    if (request.op == HandoffOperation::None || request.target.empty() || !readable) {
        return fail(L"nothing to do");
    }
    const std::wstring running = Platform::OwnPath();
    if (running.empty()) return fail(L"could not determine our own path");
    const std::wstring folder = WorkingFolder();
    if (!MakeWorkingFolder(folder)) return fail(L"could not create a working directory");
    const std::wstring copy = JoinPath(folder, LauncherFileName);
    if (!Succeeded(Platform::CopyFileTo(running, copy, true))) {
        return fail(L"could not copy the launcher out of the game folder");
    }
    std::uint32_t processId = 0;
    const Platform::Error started = Platform::StartProcess(
        {.application = copy,
         .commandLine = HandoffCommandLine(copy, request, Platform::OwnProcessId()),
         .workingFolder = folder},
        processId);
    if (!Succeeded(started)) {
        return fail(L"could not start the launcher from the working directory");
    }
    errorText.clear();
    return true;
}

bool IsHandoffCopy() {
    return FileNameOf(FolderOf(Platform::OwnPath())).starts_with(WorkingPrefix);
}

void PurgeOldWorkingFolders() {
    const std::wstring temporary = Platform::GetTempFolder();
    std::vector<Platform::FolderEntry> entries;
    if (temporary.empty() || !Succeeded(Platform::ListFolder(temporary, entries))) return;
    std::erase_if(entries, [](const Platform::FolderEntry& entry) {
        return !entry.IsFolder() || entry.IsReparsePoint() ||
               !entry.name.starts_with(WorkingPrefix);
    });
    if (entries.empty()) return;

    const std::vector<std::wstring> used = FoldersInUse();
    for (const Platform::FolderEntry& entry : entries) {
        const std::wstring folder = JoinPath(temporary, entry.name);
        // The temporary folder may be given with short names, and processes be told either way.
        std::wstring final;
        if (!Succeeded(Platform::GetFinalPath(folder, final))) continue;
        const bool inUse = std::any_of(used.begin(), used.end(), [&](const std::wstring& other) {
            return IsSameOrInside(other, final) || IsSameOrInside(other, folder);
        });
        // What cannot be removed yet goes at a later start.
        if (!inUse && FinishNotedRemoval(folder)) (void)RemoveInstallFolder(folder, nullptr);
    }
}

void ScheduleSelfRemoval() {
    if (!IsHandoffCopy()) return;
    const std::wstring running = Platform::OwnPath();
    const std::wstring folder = FolderOf(running);
    // The shell would put a variable's value in the place of its name. The reboot and the next
    // start remove such a folder as well. None of these is sure, which is why there are three.
    if (folder.find(L'%') == std::wstring::npos && IsSafeFolder(folder)) {
        (void)Platform::RemoveFolderLater(folder, RemovalDelaySeconds);
    }
    (void)Platform::RemoveAtReboot(running);
    (void)Platform::RemoveAtReboot(folder);
}

}  // namespace Launcher
