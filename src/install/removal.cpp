#include "install/removal.h"

#include "install/folder_tree.h"
#include "install/game_folder.h"
#include "install/settings_store.h"
#include "platform/files.h"
#include "platform/registry.h"

namespace Launcher {

namespace {

/// Holds the settings key and the launcher key.
constexpr const wchar_t* ProductKey = L"Software\\TolvanOnline";

}  // namespace

bool RemoveSettingsKey() {
    return Platform::Succeeded(Platform::RemoveRegistryTree(ProductKey));
}

bool RemoveShortcuts() {
    // Links that are not there are what the player wants.
    if (const std::wstring link = DesktopShortcutPath(); !link.empty()) {
        (void)Platform::RemoveFile(link);
    }
    if (const std::wstring entry = StartMenuFolder();
        !entry.empty() && Platform::PathExists(entry)) {
        (void)RemoveInstallFolder(entry, nullptr);
    }
    return true;
}

bool RemoveUninstallEntry() {
    return Platform::Succeeded(Platform::RemoveRegistryTree(g_uninstallKey.Path()));
}

}  // namespace Launcher
