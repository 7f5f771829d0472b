#include "update/self_update.h"

#include "common/deployment.h"
#include "common/path_text.h"
#include "install/game_client.h"
#include "install/game_folder.h"
#include "patch/fetch.h"
#include "patch/url_path.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"
#include "update/endpoint.h"
#include "update/launcher_swap.h"

namespace Launcher {

using enum SelfUpdateOutcome;

void SelfUpdate::Start(bool checkOnly) {
    if (outcome_ != NotStarted) return;
    outcome_ = Running;
    cancelled_ = false;
    worker_ = std::thread([this, checkOnly] { Run(checkOnly); });
}

void SelfUpdate::Stop() {
    cancelled_ = true;
    if (worker_.joinable()) worker_.join();
}

std::wstring SelfUpdate::Detail() const {
    const std::scoped_lock lock(detailLock_);
    return detail_;
}

void SelfUpdate::End(SelfUpdateOutcome outcome, std::wstring detail) {
    {
        const std::scoped_lock lock(detailLock_);
        detail_ = std::move(detail);
    }
    outcome_ = outcome;
}

void SelfUpdate::Run(bool checkOnly) {
    const std::wstring running = Platform::OwnPath();
    if (running.empty()) return End(CheckFailed, L"could not determine our own path");
    if (!Platform::EqualIgnoringCase(FileNameOf(running), LauncherFileName)) {
        return End(Disabled, L"running under a non-published name");
    }

    std::string answer;
    std::wstring errorText;
    const std::wstring published = std::wstring(L"launcher/") + LauncherFileName;
    if (!FetchText(EndpointUrl(Deployment::PatchUrl(), published), answer, &errorText,
                   LongestEndpointAnswer, [this] { return cancelled_.load(); })) {
        return End(CheckFailed,
                   L"check failed -- " + (errorText.empty() ? L"no response" : errorText));
    }
    const std::optional<std::uint32_t> publishedCrc = ParseLauncherAnswer(answer);
    if (!publishedCrc) {
        return End(CheckFailed, L"the update endpoint answered something that is not a CRC");
    }
    const std::uint32_t runningCrc = CrcOfFile(running);
    if (runningCrc == 0) return End(CheckFailed, L"could not hash our own binary");
    if (runningCrc == *publishedCrc) return End(UpToDate, {});
    if (checkOnly) {
        return End(Available, L"an update is published, not fetched under --checkonly");
    }
    if (cancelled_) return End(CheckFailed, L"cancelled");
    const std::wstring staged = StagedLauncherPath(running);
    std::wstring failure = Fetch(staged, *publishedCrc);
    if (failure.empty()) return End(Staged, {});
    // Whatever came down is not the published launcher, or not all of it.
    (void)Platform::RemoveFile(staged);
    End(Failed, std::move(failure));
}

std::wstring SelfUpdate::Fetch(const std::wstring& staged, std::uint32_t publishedCrc) {
    std::wstring errorText;
    const std::wstring url =
        Deployment::AssetsUrl() + L"downloads/" + EncodeUrlPath(LauncherFileName);
    if (!FetchFile(
            url, staged, nullptr, [this] { return cancelled_.load(); }, &errorText, nullptr)) {
        return L"download failed -- " + (errorText.empty() ? L"unknown" : errorText);
    }
    if (CrcOfFile(staged) != publishedCrc) {
        return L"the downloaded launcher did not match its published CRC";
    }
    return IsLauncherFile(staged) ? L"" : L"the downloaded file is not a launcher";
}

bool SelfUpdate::Apply(StandDownEvent& event, std::optional<WindowPosition> position) {
    if (outcome_ != Staged) return false;
    const std::wstring running = Platform::OwnPath();
    LauncherSwap swap(running);
    if (!swap.Swap()) return false;
    event.Create();
    if (StartSwappedLauncher(running, position)) return true;
    swap.Undo();
    return false;
}

}  // namespace Launcher
