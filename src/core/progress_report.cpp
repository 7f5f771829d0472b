#include "core/progress_report.h"

#include "deployment_values.h"

#if TOLVAN_DEVELOPER_BUILD

#include <array>
#include <cstdio>
#include <span>
#include <string>

#include "core/globals.h"
#include "core/timing.h"
#include "patch/patch_pipeline.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr double SecondsBetweenLines = 0.1;
constexpr double BytesPerMiB = 1024.0 * 1024.0;

struct Report {
    Report() {
        const std::wstring path = Platform::GetEnvironmentText(L"TOLVAN_PROGRESS_FILE");
        // Without the file nothing is reported.
        if (path.empty()) return;
        (void)file.Open(path, {.access = Platform::AccessWrite,
                               .disposition = Platform::Disposition::CreateAlways});
    }

    Platform::File file;
    Periodic pace{SecondsBetweenLines};
    State lastState = State::Boot;
    std::wstring lastError;
};

PatchProgress OfRun() {
    PatchProgress progress = g_patch.Progress();
    progress.state = g_state;
    if (!g_statusMessage.empty()) progress.errorText = g_statusMessage;
    return progress;
}

PatchProgress OfInstall(const InstallProgress& install) {
    PatchProgress progress;
    progress.state = install.running  ? State::Install
                     : install.failed ? State::InstallFailed
                                      : State::InstallDone;
    progress.fraction = install.fraction;
    progress.filesDone = static_cast<std::int32_t>(install.filesDone);
    progress.filesTotal = static_cast<std::int32_t>(install.filesTotal);
    progress.bytesDone = install.bytesDone;
    progress.bytesPerSecond = install.speedMBps * BytesPerMiB;
    progress.currentFile = install.title + L" | " + install.status;
    progress.errorText = install.error;
    return progress;
}

PatchProgress Now() {
    const InstallProgress install = g_installEngine.GetProgress();
    const bool hasInstall = install.running || install.failed || install.done;
    return hasInstall && g_state != State::Halt ? OfInstall(install) : OfRun();
}

std::string LineOf(double time, const PatchProgress& progress) {
    std::array<char, 256> numbers;
    std::snprintf(numbers.data(), numbers.size(), "%.3f\t%s\t%.6f\t%d\t%d\t%llu\t%llu\t%.0f\t",
                  time, StateName(progress.state), static_cast<double>(progress.fraction),
                  progress.filesDone, progress.filesTotal,
                  static_cast<unsigned long long>(progress.bytesDone),
                  static_cast<unsigned long long>(progress.bytesTotal), progress.bytesPerSecond);
    return numbers.data() + Platform::Utf8FromWide(progress.currentFile) + "\t" +
           Platform::Utf8FromWide(progress.errorText) + "\n";
}

}  // namespace

void ReportProgress(double time) {
    static Report report;
    if (!report.file.IsOpen()) return;
    const bool isDue = report.pace.IsDue(time);
    const PatchProgress progress = Now();
    const bool changed =
        progress.state != report.lastState || progress.errorText != report.lastError;
    const bool moves = IsPatching(progress.state) || progress.state == State::Install;
    if (!changed && !(moves && isDue)) return;
    report.lastState = progress.state;
    report.lastError = progress.errorText;
    const std::string line = LineOf(time, progress);
    // A line that cannot be written is missing, and the run goes on.
    (void)report.file.Write(std::as_bytes(std::span(line)));
}

}  // namespace Launcher

#else

void Launcher::ReportProgress(double) {}

#endif
