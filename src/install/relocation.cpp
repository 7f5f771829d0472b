#include "install/relocation.h"

#include <algorithm>

#include "common/path_text.h"
#include "install/folder_tree.h"
#include "install/game_client.h"
#include "install/game_folder.h"
#include "install/path_resolution.h"
#include "install/path_rules.h"
#include "install/settings_store.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/shell_links.h"
#include "platform/text.h"

namespace Launcher {

namespace {

std::wstring FinalPathOf(const std::wstring& path) {
    std::wstring final;
    return Platform::Succeeded(Platform::GetFinalPath(path, final)) ? final : path;
}

bool Overlap(const std::wstring& first, const std::wstring& second) {
    const std::wstring one = FinalPathOf(first);
    const std::wstring other = FinalPathOf(second);
    return IsSameOrInside(one, other) || IsSameOrInside(other, one);
}

bool IsGame(const std::wstring& folder) {
    return !FindClient(folder).empty() && Platform::IsExistingFolder(JoinPath(folder, L"Data"));
}

bool MayDelete(const std::wstring& copy, const std::wstring& kept) {
    return IsSafeFolder(copy) && IsGame(copy) && CountRunningClients(copy) == 0 &&
           !Overlap(copy, kept) && !Overlap(copy, FolderOf(Platform::OwnPath()));
}

}  // namespace

std::wstring ResolveRelocateTarget(const std::wstring& text, bool ownFolder) {
    const std::wstring path = NormalisePath(text);
    const bool named = Platform::EqualIgnoringCase(FileNameOf(path), GameName);
    return path.empty() || named || !ownFolder ? path : JoinPath(path, GameName);
}

void RenewInstallRecord(const std::wstring& folder) {
    RefreshUninstallEntry(folder);
    // The game starts from its folder as well.
    (void)CreateDesktopShortcut(folder, nullptr);
    (void)CreateStartMenuEntry(folder, nullptr);
}

bool MoveInstallation(const std::wstring& source, const std::wstring& destination,
                      const MoveHooks& hooks, MoveResult& result) {
    const Platform::ShellApartment apartment;
    MoveHooks withRecords = hooks;
    withRecords.onStanding = [&] {
        RenewInstallRecord(destination);
        if (hooks.onStanding) hooks.onStanding();
    };
    // For a next start that finds the old folder gone and the records not renewed yet.
    const std::wstring lastPath = GetLastInstallPath();
    SetLastInstallPath(destination);
    const bool moved = MoveInstallFolder(source, destination, withRecords, result);
    if (!moved && result.code != MoveCode::LeftBehind) SetLastInstallPath(lastPath);
    return moved;
}

void RecoverInterruptedMove() {
    const std::wstring registered = GetInstallLocation();
    if (registered.empty() || IsGame(registered)) return;
    PutBackInterruptedMove(registered);
    const std::wstring other = GetLastInstallPath();
    if (!FindClient(registered).empty() || !IsSafeFolder(other) || !IsGame(other)) return;
    const Platform::ShellApartment apartment;
    RenewInstallRecord(other);
}

std::size_t RelinkInstallation(const std::wstring& folder, bool deleteOthers,
                               const std::vector<std::wstring>& others) {
    const Platform::ShellApartment apartment;
    SetInstallLocation(folder);
    RefreshUninstallEntry(folder);
    if (!deleteOthers) return 0;
    const auto count = std::count_if(others.begin(), others.end(), [&](const std::wstring& copy) {
        return MayDelete(copy, folder) && RemoveInstallFolder(copy, nullptr);
    });
    return static_cast<std::size_t>(count);
}

}  // namespace Launcher
