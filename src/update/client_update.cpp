#include "update/client_update.h"

#include "common/boot_log.h"
#include "common/path_text.h"
#include "install/game_client.h"
#include "install/game_folder.h"
#include "patch/fetch.h"
#include "patch/url_path.h"
#include "platform/executable_image.h"
#include "platform/files.h"
#include "platform/resources.h"
#include "platform/text.h"
#include "update/endpoint.h"

namespace Launcher {

using enum ClientUpdateOutcome;

namespace {

bool Is64Bit(std::uint16_t machine) {
    return machine == Platform::MachineX64 || machine == Platform::MachineArm64;
}

/// 0 when there is none.
std::uint64_t SizeOf(const std::wstring& path) {
    Platform::FileInfo info;
    return Platform::Succeeded(Platform::GetFileInfo(path, info)) ? info.size : 0;
}

bool IsPublished(const std::wstring& path, const PublishedClient& published) {
    if (SizeOf(path) != published.size) return false;
    const std::uint32_t crc = CrcOfFile(path);
    return crc != 0 && crc == published.crc;
}

const char* LogWord(ClientUpdateOutcome outcome) {
    switch (outcome) {
        case Disabled:
            return "disabled";
        case UpToDate:
            return "up to date";
        case CheckFailed:
            return "CHECK FAILED";
        case Staged:
            return "staged";
        case Failed:
            return "FAILED";
        case NotStarted:
        case Running:
            break;
    }
    return "";
}

}  // namespace

bool Wants64BitClient(Platform::Architecture machine, std::uint32_t archSetting) {
    if (archSetting == ClientArchX86) return false;
    return machine == Platform::Architecture::X64 || machine == Platform::Architecture::Arm64;
}

void ClientUpdate::Start(const std::wstring& baseUrl, const std::wstring& installFolder,
                         std::uint32_t archSetting, bool checkOnly) {
    Cancel(installFolder.empty() ? Disabled : Running);
    deferralLogged_ = swapFailed_ = stagedMissing_ = false;
    if (installFolder.empty()) return;
    clientPath_ = JoinPath(installFolder, ClientFileName);
    stagedPath_ = clientPath_ + L".part";
    // A read that the system does not wake holds the earlier worker, and must not hold this thread.
    worker_ = std::jthread(
        [this, request = Request{baseUrl, clientPath_, stagedPath_, archSetting, checkOnly},
         earlier = std::move(worker_)](const std::stop_token& stop) mutable {
            if (earlier.joinable()) earlier.join();
            if (!stop.stop_requested()) Run(request, stop);
        });
}

/// The run that is on has no say in the outcome from here on.
void ClientUpdate::Cancel(ClientUpdateOutcome now) {
    const std::scoped_lock lock(detailLock_);
    worker_.request_stop();
    outcome_ = now;
}

void ClientUpdate::Stop() {
    worker_.request_stop();
    if (worker_.joinable()) worker_.join();
}

std::wstring ClientUpdate::Detail() const {
    const std::scoped_lock lock(detailLock_);
    return detail_;
}

bool ClientUpdate::HoldsPlay() const {
    const ClientUpdateOutcome outcome = outcome_;
    return needsUpdate_ &&
           (outcome == Running || (outcome == Staged && !swapFailed_ && !stagedMissing_));
}

bool ClientUpdate::HasFailedForPlay() const {
    const ClientUpdateOutcome outcome = outcome_;
    return needsUpdate_ && (outcome == CheckFailed || outcome == Failed);
}

void ClientUpdate::End(const std::stop_token& stop, ClientUpdateOutcome outcome,
                       std::wstring detail) {
    std::string line = std::string("clientupdate: ") + LogWord(outcome);
    if (!detail.empty()) line += " -- " + Platform::Utf8FromWide(detail);
    BootLog(line);
    const std::scoped_lock lock(detailLock_);
    if (stop.stop_requested()) return;
    detail_ = std::move(detail);
    outcome_ = outcome;
}

void ClientUpdate::Run(const Request& request, const std::stop_token& stop) {
    const std::uint16_t machine = Platform::ReadMachineType(request.clientPath);
    const bool wants64Bit =
        Wants64BitClient(Platform::GetNativeArchitecture(), request.archSetting);
    const bool mismatch = wants64Bit ? machine == Platform::MachineX86 : Is64Bit(machine);
    needsUpdate_ = mismatch || !(Is64Bit(machine) || machine == Platform::MachineX86);
    const std::wstring publishedName =
        wants64Bit ? L"Tolvan Online_x64.exe" : L"Tolvan Online_x86.exe";
    if (mismatch) {
        BootLog("clientupdate: installed client is the wrong architecture -- fetching " +
                Platform::Utf8FromWide(publishedName));
    }
    if (request.checkOnly) {
        End(stop, Disabled, L"--checkonly");
    } else {
        Fetch(request, publishedName, wants64Bit, stop);
    }
}

void ClientUpdate::Fetch(const Request& request, const std::wstring& publishedName, bool wants64Bit,
                         const std::stop_token& stop) {
    const auto cancelled = [&] { return stop.stop_requested(); };
    const auto end = [&](ClientUpdateOutcome outcome, std::wstring detail) {
        End(stop, outcome, std::move(detail));
    };
    // Nothing half stays behind; a staged client of an earlier run survives a failed check.
    const auto reject = [&](std::wstring detail) {
        (void)Platform::RemoveFile(request.stagedPath);
        end(Failed, std::move(detail));
    };
    const std::wstring& clientPath = request.clientPath;
    const std::wstring& stagedPath = request.stagedPath;
    std::string answer;
    std::wstring errorText;
    if (!FetchText(EndpointUrl(request.baseUrl, publishedName), answer, &errorText,
                   LongestEndpointAnswer, cancelled)) {
        return end(CheckFailed,
                   L"check failed -- " + (errorText.empty() ? L"no response" : errorText));
    }
    const std::optional<PublishedClient> published = ParseClientAnswer(answer);
    if (!published) {
        return end(CheckFailed, L"the endpoint answered something that is not a CRC");
    }
    if (IsPublished(clientPath, *published)) {
        (void)Platform::RemoveFile(stagedPath);  // mostly there is none
        needsUpdate_ = false;
        return end(UpToDate, {});
    }
    if (cancelled()) return end(CheckFailed, L"cancelled");
    // A former run may have left it complete.
    if (IsPublished(stagedPath, *published)) return end(Staged, {});

    (void)Platform::RemoveFile(stagedPath);
    errorText.clear();
    if (!FetchFile(request.baseUrl + L"patcher/" + EncodeUrlPath(publishedName), stagedPath,
                   nullptr, cancelled, &errorText, nullptr)) {
        return reject(L"download failed -- " + (errorText.empty() ? L"unknown" : errorText));
    }
    if (SizeOf(stagedPath) != published->size) {
        return reject(L"the downloaded client was the wrong size");
    }
    if (CrcOfFile(stagedPath) != published->crc) {
        return reject(L"the downloaded client did not match its published CRC");
    }
    if (IsLauncherFile(stagedPath)) return reject(L"the published client is a launcher");
    const std::uint16_t machine = Platform::ReadMachineType(stagedPath);
    if (machine == 0 || Is64Bit(machine) != wants64Bit) {
        return reject(L"the published client is the wrong architecture");
    }
    return end(Staged, {});
}

void ClientUpdate::LogOnce(bool& logged, const char* line) {
    if (!logged) BootLog(line);
    logged = true;
}

ClientSwap ClientUpdate::Swap() {
    if (outcome_ != Staged || swapFailed_) return ClientSwap::Done;
    stagedMissing_ = !Platform::PathExists(stagedPath_);
    if (stagedMissing_) return ClientSwap::PathsMissing;
    if (CountRunningClients(FolderOf(clientPath_)) > 0) return ClientSwap::Deferred;

    // A client that stays visible plays as well.
    (void)HideClientFile(stagedPath_);
    const Platform::Error error = Platform::MovePath(
        stagedPath_, clientPath_, {.replaceExisting = true, .writeThrough = true});
    switch (error) {
        case Platform::Error::None:
            BootLog("clientupdate: swapped in");
            needsUpdate_ = false;
            outcome_ = UpToDate;
            return ClientSwap::Done;
        case Platform::Error::AccessDenied:
        case Platform::Error::SharingViolation:
        case Platform::Error::UserMappedFile:
            LogOnce(deferralLogged_, "clientupdate: deferred -- the game is running");
            return ClientSwap::Deferred;
        default: {
            LogOnce(swapFailed_, "clientupdate: swap FAILED");
            const std::scoped_lock lock(detailLock_);
            detail_ = L"the client could not be replaced";
            return ClientSwap::Failed;
        }
    }
}

}  // namespace Launcher
