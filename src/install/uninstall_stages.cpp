#include "install/folder_tree.h"
#include "install/install_engine.h"

namespace Launcher {

void InstallEngine::ConfigureUninstall(const std::wstring& folder, bool keepSettings) {
    Stop();
    options_ = {};
    options_.path = folder;
    stages_ = UninstallStages(keepSettings);
}

void InstallEngine::StartUninstall() {
    Stop();
    fraction_ = 0.0F;
    bytesDone_ = filesDone_ = filesTotal_ = 0;
    folderWasMissing_ = false;
    Launch(0);
}

bool InstallEngine::RunRemoveFiles(const Progress& progress) {
    std::uint64_t bytes = 0;
    std::uint64_t total = 0;
    FolderStat(options_.path, bytes, total);
    filesTotal_ = total;
    const auto onFile = [&] {
        const std::uint64_t done = ++filesDone_;
        if (total != 0) progress(static_cast<double>(done) / static_cast<double>(total));
    };
    if (!RemoveInstallFolder(options_.path, onFile)) {
        return Fail(L"The install folder could not be removed: " + options_.path);
    }
    progress(1.0);
    return true;
}

}  // namespace Launcher
