#include "install/install_engine.h"

#include <algorithm>

#include "assets/texts.h"
#include "install/folder_tree.h"
#include "platform/clock.h"
#include "platform/files.h"
#include "platform/shell_links.h"

namespace Launcher {

namespace {

/// Deliberate pacing for the eye, also on a fast machine.
constexpr std::uint32_t StageHoldMilliseconds = 900;
constexpr std::uint32_t StageNapMilliseconds = 50;
constexpr std::uint32_t StepDwellMilliseconds = 260;
constexpr std::uint32_t StepNapMilliseconds = 40;

bool FolderIsMissing(const std::wstring& folder) {
    Platform::FileInfo info;
    const Platform::Error error = Platform::GetFileInfo(folder, info);
    return error == Platform::Error::FileNotFound || error == Platform::Error::PathNotFound;
}

}  // namespace

void InstallEngine::ConfigureInstall(const InstallOptions& options) {
    Stop();
    options_ = options;
    stages_ = InstallStages(options);
}

void InstallEngine::StartInstall() {
    Stop();
    fraction_ = 0.0F;
    bytesDone_ = filesDone_ = filesTotal_ = 0;
    folderWasMissing_ = FolderIsMissing(options_.path);
    Launch(0);
}

void InstallEngine::RetryInstall() {
    const std::uint32_t firstStage = failedStage_;
    if (firstStage < 1) return StartInstall();
    Stop();
    folderWasMissing_ = false;
    Launch(firstStage);
}

void InstallEngine::Launch(std::uint32_t firstStage) {
    done_ = failed_ = cancelled_ = transferActive_ = false;
    elapsedMs_ = 0;
    speedMBps_ = 0.0;
    {
        const std::scoped_lock lock(textLock_);
        title_.clear();
        status_.clear();
        error_.clear();
    }
    running_ = true;
    worker_ = std::thread([this, firstStage] { RunStages(firstStage); });
}

void InstallEngine::CancelInstall() {
    if (running_) cancelled_ = true;
}

void InstallEngine::Stop() {
    if (!worker_.joinable()) return;
    cancelled_ = true;
    worker_.join();
}

InstallProgress InstallEngine::GetProgress() const {
    InstallProgress progress{.running = running_,
                             .done = done_,
                             .failed = failed_,
                             .cancelled = cancelled_ && !done_,
                             .transferActive = transferActive_,
                             .fraction = fraction_,
                             .stageIndex = stageIndex_,
                             .stageCount = static_cast<std::uint32_t>(stages_.size()),
                             .bytesDone = bytesDone_,
                             .filesDone = filesDone_,
                             .filesTotal = filesTotal_,
                             .elapsedMs = elapsedMs_,
                             .speedMBps = speedMBps_,
                             .title = {},
                             .status = {},
                             .error = {}};
    const std::scoped_lock lock(textLock_);
    progress.title = title_;
    progress.status = status_;
    progress.error = error_;
    return progress;
}

void InstallEngine::RunStages(std::uint32_t firstStage) {
    const Platform::ShellApartment apartment;
    startTick_ = Platform::TickMilliseconds();
    const double weightSum = TotalWeight(stages_);
    double weightDone = 0.0;
    for (std::uint32_t index = 0; index < firstStage; ++index)
        weightDone += stages_[index].weight;
    fraction_ = static_cast<float>(weightDone / weightSum);

    for (std::uint32_t index = firstStage; index < stages_.size(); ++index) {
        if (!RunStageAt(index, weightDone, weightSum)) return FailAt(index);
        weightDone += stages_[index].weight;
    }
    fraction_ = 1.0F;
    stageIndex_ = static_cast<std::uint32_t>(stages_.size());
    // A run that finished goes to its receipt, also when a cancel came too late.
    cancelled_ = false;
    done_ = true;
    running_ = false;
}

bool InstallEngine::RunStageAt(std::uint32_t index, double weightBefore, double weightSum) {
    const Stage& stage = stages_[index];
    const std::uint64_t stageTick = Platform::TickMilliseconds();
    stageIndex_ = index;
    SetTitle(stage.title);
    speedMBps_ = 0.0;
    transferActive_ = false;
    const auto progress = [&](double share) {
        const double weight = std::clamp(share, 0.0, 1.0) * stage.weight;
        fraction_ = static_cast<float>((weightBefore + weight) / weightSum);
        elapsedMs_ = Platform::TickMilliseconds() - startTick_;
    };
    if (!RunStage(stage, progress)) return false;
    HoldStage(stageTick);
    elapsedMs_ = Platform::TickMilliseconds() - startTick_;
    return true;
}

void InstallEngine::HoldStage(std::uint64_t startTick) const {
    const std::uint64_t taken = Platform::TickMilliseconds() - startTick;
    for (std::uint64_t held = taken; held < StageHoldMilliseconds && !cancelled_;
         held += StageNapMilliseconds) {
        Platform::SleepMilliseconds(StageNapMilliseconds);
    }
}

void InstallEngine::FailAt(std::uint32_t index) {
    const Stage& stage = stages_[index];
    const std::wstring title = L"Failed: " + stage.title;
    {
        const std::scoped_lock lock(textLock_);
        if (error_.empty()) error_ = title;
        title_ = title;
    }
    if (folderWasMissing_ && (cancelled_ || stage.kind == StageKind::Preflight)) {
        // What is left after a failure here is what a later install finds and goes on with.
        (void)RemoveInstallFolder(options_.path, nullptr);
    }
    failedStage_ = index;
    failed_ = true;
    running_ = false;
}

void InstallEngine::ShowStep(const char* key) {
    SetStatus(Tr(g_currentLanguage, key));
    for (std::uint32_t shown = 0; shown < StepDwellMilliseconds && !cancelled_;
         shown += StepNapMilliseconds) {
        Platform::SleepMilliseconds(StepNapMilliseconds);
    }
}

void InstallEngine::SetTitle(const std::wstring& text) {
    const std::scoped_lock lock(textLock_);
    title_ = text;
}

void InstallEngine::SetStatus(const std::wstring& text) {
    const std::scoped_lock lock(textLock_);
    status_ = text;
}

bool InstallEngine::Fail(const std::wstring& error) {
    const std::scoped_lock lock(textLock_);
    error_ = error;
    return false;
}

}  // namespace Launcher
