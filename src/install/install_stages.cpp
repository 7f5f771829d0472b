#include "assets/texts.h"
#include "common/deployment.h"
#include "install/file_list.h"
#include "install/folder_tree.h"
#include "install/install_engine.h"
#include "install/path_rules.h"
#include "install/removal.h"
#include "install/settings_store.h"
#include "patch/fetch.h"
#include "patch/url_path.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/system_facts.h"

namespace Launcher {

namespace {

constexpr std::size_t LongestFileList = std::size_t{8} * 1024 * 1024;
constexpr std::uint64_t SpeedSampleMilliseconds = 250;
constexpr double BytesPerMiB = 1024.0 * 1024.0;
constexpr const wchar_t* CancelledText = L"Installation cancelled";

/// As many files as the verify stage counts at the most.
constexpr int CountLimit = 100000;

const char* TextKey(Install::Step step) {
    switch (step) {
        case Install::Step::FindShaderCompiler:
            return "SUB_D3D_FIND";
        case Install::Step::DeployShaderCompiler:
            return "SUB_PREFLIGHT";
        case Install::Step::OpenSettings:
            return "SUB_REG_OPEN";
        case Install::Step::WriteDefaults:
            return "SUB_REGISTRY";
        case Install::Step::StoreLanguage:
            return "SUB_REG_LANG";
        case Install::Step::DeliverLauncher:
            return "SUB_ARP_DELIVER";
        case Install::Step::RegisterUninstall:
            return "SUB_UNINST2";
        case Install::Step::FindShortcutFolder:
            return "SUB_LINK_FIND";
        case Install::Step::MakeStartMenuFolder:
            return "SUB_LINK_DIR";
        case Install::Step::WriteDesktopLink:
            return "SUB_DESKTOP";
        case Install::Step::WriteStartMenuLink:
            return "SUB_STARTMENU";
    }
    return "";
}

bool RunsOn64Bit() {
    const Platform::Architecture architecture = Platform::GetNativeArchitecture();
    return architecture == Platform::Architecture::X64 ||
           architecture == Platform::Architecture::Arm64;
}

std::wstring FolderOf(const std::wstring& path) {
    const std::size_t cut = path.rfind(L'\\');
    return cut == std::wstring::npos ? std::wstring() : path.substr(0, cut);
}

bool HasSize(const std::wstring& path, std::uint64_t size) {
    Platform::FileInfo info;
    return Platform::Succeeded(Platform::GetFileInfo(path, info)) && !info.IsFolder() &&
           info.size == size;
}

/// MiB a second of the bytes that came in, measured over samples of at least a quarter second.
class SpeedMeter {
public:
    explicit SpeedMeter(std::atomic<double>& speed)
        : speed_(speed), sampleTick_(Platform::TickMilliseconds()) {}

    void Received(std::uint64_t bytes) {
        const std::uint64_t now = Platform::TickMilliseconds();
        const std::uint64_t elapsed = now - sampleTick_;
        if (elapsed < SpeedSampleMilliseconds) return;
        const double sample = static_cast<double>(bytes - sampleBytes_) / BytesPerMiB /
                              (static_cast<double>(elapsed) / 1000.0);
        if (sample > 0.0) speed_ = sample;
        sampleTick_ = now;
        sampleBytes_ = bytes;
    }

private:
    std::atomic<double>& speed_;
    std::uint64_t sampleTick_;
    std::uint64_t sampleBytes_ = 0;
};

/// Where a file is downloaded to.
std::wstring PartOf(const std::wstring& destination) {
    return destination + L".part";
}

/// Puts a finished download in the place of what stood there, whatever its attributes.
Platform::Error MoveIntoPlace(const std::wstring& part, const std::wstring& destination) {
    // There may be nothing to clear; the move tells.
    (void)Platform::ChangeAttributes(destination, Platform::AttributeNormal);
    return Platform::MovePath(part, destination, {.replaceExisting = true, .writeThrough = true});
}

}  // namespace

Install::Steps InstallEngine::StepReporter() {
    return [this](Install::Step step) { ShowStep(TextKey(step)); };
}

bool InstallEngine::RunStage(const Stage& stage, const Progress& progress) {
    SetStatus({});
    filesDone_ = filesTotal_ = bytesDone_ = 0;
    switch (stage.kind) {
        case StageKind::Preflight:
            return RunPreflight(progress);
        case StageKind::FetchBase:
            return RunFetchBase(progress);
        case StageKind::FetchFull:
            return RunFetchFull(progress);
        case StageKind::FetchClient:
            return RunFetchClient(progress);
        case StageKind::FetchCore:
            return RunFetchCore(progress);
        case StageKind::Verify:
            return RunVerify(progress);
        case StageKind::Registry:
            return RunRegistry(progress);
        case StageKind::RegisterUninstall:
            return RunRegisterUninstall(progress);
        case StageKind::Desktop:
            return RunDesktop(progress);
        case StageKind::StartMenu:
            return RunStartMenu(progress);
        case StageKind::RemoveFiles:
            return RunRemoveFiles(progress);
        // These three may fail: a key or a link that is not there is what the player wants.
        case StageKind::RemoveSettings:
            (void)RemoveSettingsKey();
            break;
        case StageKind::RemoveShortcuts:
            (void)RemoveShortcuts();
            break;
        case StageKind::RemoveEntry:
            (void)RemoveUninstallEntry();
            break;
    }
    progress(1.0);
    return true;
}

bool InstallEngine::RunPreflight(const Progress& progress) {
    // A machine without the library still runs the game's other renderer.
    (void)DeployShaderCompiler(StepReporter());
    progress(1.0);
    return true;
}

bool InstallEngine::RunFetchBase(const Progress& progress) {
    if (!CreateFolderPath(options_.path)) {
        return Fail(L"Could not create the installation folder: " + options_.path);
    }
    const std::wstring base = Deployment::PatchUrl();
    return FetchList(base + L"scripts/base.php", base + L"patcher/base/", options_.path + L"\\",
                     progress);
}

bool InstallEngine::RunFetchFull(const Progress& progress) {
    const std::wstring data = options_.path + L"\\Data\\";
    if (!CreateFolderPath(data)) return Fail(L"Could not create the data folder: " + data);
    const std::wstring base = Deployment::PatchUrl();
    return FetchList(base + L"scripts/index.txt", base + L"patcher/get/", data, progress);
}

bool InstallEngine::RunFetchClient(const Progress& progress) {
    const std::wstring published =
        std::wstring(L"patcher/Tolvan Online_") + (RunsOn64Bit() ? L"x64.exe" : L"x86.exe");
    const std::wstring client = options_.path + L"\\" + ClientFileName;
    // A client that waited here for its swap is hidden, and hidden files cannot be written over.
    (void)Platform::ChangeAttributes(PartOf(client), Platform::AttributeNormal);
    if (!FetchOne(Deployment::PatchUrl() + EncodeUrlPath(published), client, ClientFileName,
                  {.from = 0.0, .to = 0.95}, progress)) {
        return false;
    }
    ShowStep("SUB_SECURE");
    // A client that stays visible plays as well.
    (void)HideClientFile(client);
    progress(1.0);
    return true;
}

bool InstallEngine::RunFetchCore(const Progress& progress) {
    const std::wstring launcher = options_.path + L"\\" + LauncherFileName;
    const bool fetched =
        FetchOne(Deployment::AssetsUrl() + L"downloads/" + EncodeUrlPath(LauncherFileName),
                 launcher, LauncherFileName, {}, progress);
    if (!fetched && cancelled_) return Fail(CancelledText);
    if (!fetched) {
        // A dead assets host costs nothing: the running program is copied into place later, unless
        // a whole launcher stands there already.
        if (HasSize(launcher, 0)) (void)Platform::RemoveFile(launcher);
        (void)Fail({});
        SetStatus({});
    }
    progress(1.0);
    return true;
}

bool InstallEngine::RunVerify(const Progress& progress) {
    ShowStep("SUB_VERIFY");
    if (CountFiles(options_.path, 1) < 1) {
        return Fail(L"The installed folder is empty - the archive did not extract.");
    }
    progress(0.5);
    ShowStep("SUB_VERIFY2");
    const int files = CountFiles(options_.path, CountLimit);
    SetStatus(Tr(g_currentLanguage, "SUB_VERIFY2") + L"  \u00B7  " + std::to_wstring(files));
    progress(1.0);
    return true;
}

bool InstallEngine::RunRegistry(const Progress& progress) {
    const bool written =
        WriteGameDefaults(static_cast<std::uint32_t>(options_.language), StepReporter());
    progress(1.0);
    return written;
}

bool InstallEngine::RunRegisterUninstall(const Progress& progress) {
    ShowStep("SUB_UNINST");
    std::uint64_t bytes = 0;
    std::uint64_t files = 0;
    FolderStat(options_.path, bytes, files);
    progress(0.4);
    const bool written = WriteUninstallEntry(
        options_.path, bytes == 0 ? options_.estimatedBytes : bytes, StepReporter());
    progress(1.0);
    return written;
}

bool InstallEngine::RunDesktop(const Progress& progress) {
    const bool created = CreateDesktopShortcut(options_.path, StepReporter());
    progress(1.0);
    return created;
}

bool InstallEngine::RunStartMenu(const Progress& progress) {
    const bool created = CreateStartMenuEntry(options_.path, StepReporter());
    progress(1.0);
    return created;
}

bool InstallEngine::FetchList(const std::wstring& listUrl, const std::wstring& fileUrlPrefix,
                              const std::wstring& destinationFolder, const Progress& progress) {
    ShowStep("SUB_MANIFEST");
    std::string text;
    std::wstring errorText;
    if (!FetchText(listUrl, text, &errorText, LongestFileList,
                   [this] { return cancelled_.load(); })) {
        return Fail(cancelled_ ? CancelledText : L"Could not read the file list: " + errorText);
    }
    const std::vector<FileListEntry> entries = ParseFileList(text);
    if (entries.empty()) return Fail(L"The file list is empty: " + listUrl);

    std::uint64_t totalBytes = 0;
    for (const FileListEntry& entry : entries)
        totalBytes += entry.size;
    filesTotal_ = entries.size();
    const auto shareAt = [&](std::size_t files, std::uint64_t bytes) {
        return totalBytes == 0 ? static_cast<double>(files) / static_cast<double>(entries.size())
                               : static_cast<double>(bytes) / static_cast<double>(totalBytes);
    };

    std::uint64_t doneBytes = 0;
    std::wstring lastFolder;
    for (std::size_t index = 0; index < entries.size(); ++index) {
        const FileListEntry& entry = entries[index];
        if (cancelled_) return Fail(CancelledText);
        std::wstring target = destinationFolder + entry.path;
        for (wchar_t& character : target) {
            if (character == L'/') character = L'\\';
        }
        const std::wstring folder = FolderOf(target);
        if (folder != lastFolder) {
            if (!CreateFolderPath(folder)) return Fail(L"Could not create folder: " + folder);
            lastFolder = folder;
        }
        const Share share{.from = shareAt(index, doneBytes),
                          .to = shareAt(index + 1, doneBytes + entry.size),
                          .baseBytes = doneBytes};
        if (entry.size != 0 && HasSize(target, entry.size)) {
            bytesDone_ = doneBytes + entry.size;
            SetStatus(entry.path);
            progress(share.to);
        } else if (!FetchOne(fileUrlPrefix + EncodeUrlPath(entry.path), target, entry.path, share,
                             progress)) {
            return false;
        }
        doneBytes += entry.size;
        filesDone_ = index + 1;
    }
    SetStatus({});
    progress(1.0);
    return true;
}

bool InstallEngine::FetchOne(const std::wstring& url, const std::wstring& destination,
                             const std::wstring& label, const Share& share,
                             const Progress& progress) {
    SpeedMeter meter(speedMBps_);
    const auto onProgress = [&](std::uint64_t received, std::uint64_t total) {
        bytesDone_ = share.baseBytes + received;
        meter.Received(received);
        SetStatus(label);
        const double part =
            total == 0 ? 0.0 : static_cast<double>(received) / static_cast<double>(total);
        progress(share.from + (share.to - share.from) * part);
    };
    // What stands at the destination stays until the new file is whole.
    const std::wstring part = PartOf(destination);
    std::wstring errorText;
    transferActive_ = true;
    bool fetched = FetchFile(
        url, part, onProgress, [this] { return cancelled_.load(); }, &errorText, nullptr);
    transferActive_ = false;
    if (fetched && label == LauncherFileName && HasSize(part, 0)) {
        errorText = L"The downloaded file is empty";
        fetched = false;
    }
    if (fetched) {
        const Platform::Error moved = MoveIntoPlace(part, destination);
        fetched = Platform::Succeeded(moved);
        if (!fetched) {
            errorText = L"Could not replace the file (error " +
                        std::to_wstring(Platform::Code(moved)) + L")";
        }
    }
    if (fetched) {
        progress(share.to);
        return true;
    }
    (void)Platform::RemoveFile(part);  // mostly FetchFile has done so
    if (cancelled_) return false;
    return Fail(L"Download failed: " + label + (errorText.empty() ? L"" : L"  -  " + errorText));
}

}  // namespace Launcher
