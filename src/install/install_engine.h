#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "install/game_folder.h"
#include "install/install_stage.h"

/// Puts the game on a machine or takes it off: walks a list of stages on a worker thread and
/// publishes how far it is. All public calls belong to the main thread, apart from GetProgress.
namespace Launcher {

/// A snapshot of a run.
struct InstallProgress {
    bool running = false;
    bool done = false;
    bool failed = false;
    bool cancelled = false;        ///< with failed: the player stopped the run
    bool transferActive = false;   ///< a download is in flight
    float fraction = 0.0F;         ///< of the whole bar, 0 to 1
    std::uint32_t stageIndex = 0;  ///< the stage count at the end
    std::uint32_t stageCount = 0;
    std::uint64_t bytesDone = 0;  ///< of the present stage, like the two below
    std::uint64_t filesDone = 0;
    std::uint64_t filesTotal = 0;
    std::uint64_t elapsedMs = 0;  ///< since the run, or its retry, began
    double speedMBps = 0.0;       ///< MiB a second
    std::wstring title;
    std::wstring status;
    std::wstring error;
};

class InstallEngine {
public:
    InstallEngine() = default;
    ~InstallEngine() { Stop(); }
    InstallEngine(const InstallEngine&) = delete;
    InstallEngine& operator=(const InstallEngine&) = delete;

    /// Keeps the options and builds the stage list. A run that is on is cancelled, and waited for.
    void ConfigureInstall(const InstallOptions& options);
    const std::vector<Stage>& Stages() const { return stages_; }

    /// Builds the stage list of a removal of the folder. As ConfigureInstall.
    void ConfigureUninstall(const std::wstring& folder, bool keepSettings);

    /// A removal runs to its end, whatever is asked. For a process outside of the folder.
    void StartUninstall();

    /// A fresh run from the first stage. Waits for an earlier worker first.
    void StartInstall();
    /// Goes on at the stage that failed. What stood before stays, also when it is cancelled.
    void RetryInstall();
    /// Asks the run to end. It ends at the next block of a download, or between two files; stages
    /// that fetch nothing run to their end.
    void CancelInstall();
    /// Cancels and waits for the worker: the teardown.
    void Stop();

    /// Any thread.
    InstallProgress GetProgress() const;

private:
    using Progress = std::function<void(double)>;

    void Launch(std::uint32_t firstStage);
    void RunStages(std::uint32_t firstStage);
    bool RunStageAt(std::uint32_t index, double weightBefore, double weightSum);
    void HoldStage(std::uint64_t startTick) const;
    void FailAt(std::uint32_t index);

    bool RunStage(const Stage& stage, const Progress& progress);
    bool RunPreflight(const Progress& progress);
    bool RunFetchBase(const Progress& progress);
    bool RunFetchFull(const Progress& progress);
    bool RunFetchClient(const Progress& progress);
    bool RunFetchCore(const Progress& progress);
    bool RunVerify(const Progress& progress);
    bool RunRegistry(const Progress& progress);
    bool RunRegisterUninstall(const Progress& progress);
    bool RunDesktop(const Progress& progress);
    bool RunStartMenu(const Progress& progress);
    bool RunRemoveFiles(const Progress& progress);

    bool FetchList(const std::wstring& listUrl, const std::wstring& fileUrlPrefix,
                   const std::wstring& destinationFolder, const Progress& progress);
    /// The part of the stage that one file takes, and the bytes that came before it.
    struct Share {
        double from = 0.0;
        double to = 1.0;
        std::uint64_t baseBytes = 0;
    };
    bool FetchOne(const std::wstring& url, const std::wstring& destination,
                  const std::wstring& label, const Share& share, const Progress& progress);

    /// Shows a status text for as long as an eye needs to read it.
    void ShowStep(const char* key);
    Install::Steps StepReporter();
    void SetTitle(const std::wstring& text);
    void SetStatus(const std::wstring& text);
    bool Fail(const std::wstring& error);

    InstallOptions options_;
    std::vector<Stage> stages_;
    std::thread worker_;
    std::uint64_t startTick_ = 0;    ///< worker only
    bool folderWasMissing_ = false;  ///< worker only: a failed fresh install takes its folder back

    std::atomic<std::uint32_t> failedStage_{0};
    std::atomic<bool> running_{false};
    std::atomic<bool> done_{false};
    std::atomic<bool> failed_{false};
    std::atomic<bool> cancelled_{false};
    std::atomic<bool> transferActive_{false};
    std::atomic<float> fraction_{0.0F};
    std::atomic<std::uint32_t> stageIndex_{0};
    std::atomic<std::uint64_t> bytesDone_{0};
    std::atomic<std::uint64_t> filesDone_{0};
    std::atomic<std::uint64_t> filesTotal_{0};
    std::atomic<std::uint64_t> elapsedMs_{0};
    std::atomic<double> speedMBps_{0.0};

    mutable std::mutex textLock_;  ///< guards the three texts
    std::wstring title_;
    std::wstring status_;
    std::wstring error_;
};

}  // namespace Launcher
