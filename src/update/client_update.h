#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>

#include "platform/system_facts.h"

/// Keeps the game client's executable current, in step with the machine's architecture: a worker
/// asks which client is published, fetches it beside the installed one as ".part" and checks it;
/// the state loop swaps it in when no game runs.
namespace Launcher {

enum class ClientUpdateOutcome : std::int32_t {
    NotStarted = 0,
    Disabled = 1,  ///< no check was made
    Running = 2,
    UpToDate = 3,
    CheckFailed = 4,  ///< no usable answer
    Staged = 6,       ///< the newer client stands as ".part", checked
    Failed = 7,       ///< it could not be fetched
};

enum class ClientSwap : std::int32_t {
    Done = 0,          ///< or nothing to do
    PathsMissing = 1,  ///< nothing is staged where it should be
    Deferred = 2,      ///< the game runs
    Failed = 3,        ///< the client could not be replaced; no further try until the next Start
};

/// The player's choice among the settings: 1 asks for the 32-bit client on any machine; every
/// other value leaves it to the machine.
inline constexpr std::uint32_t ClientArchX86 = 1;

/// Whether the 64-bit client is wanted. Pure.
bool Wants64BitClient(Platform::Architecture machine, std::uint32_t archSetting);

class ClientUpdate {
public:
    ClientUpdate() = default;
    ~ClientUpdate() { Stop(); }
    ClientUpdate(const ClientUpdate&) = delete;
    ClientUpdate& operator=(const ClientUpdate&) = delete;

    /// Begins a check, in place of one that runs; that one is cancelled, and this one waits until
    /// it has ended. Disabled without an install folder. Main thread.
    void Start(const std::wstring& baseUrl, const std::wstring& installFolder,
               std::uint32_t archSetting, bool checkOnly);
    /// Cancels and joins the worker. Main thread.
    void Stop();

    ClientUpdateOutcome Outcome() const { return outcome_; }  ///< Any thread.
    std::wstring Detail() const;                              ///< The reason in words. Any thread.

    /// The installed client is missing, unreadable or of the wrong architecture. Any thread.
    bool NeedsUpdate() const { return needsUpdate_; }
    /// PLAY has to wait: a client is needed, and is being fetched or waits for its swap. Main
    /// thread.
    bool HoldsPlay() const;
    /// A client is needed and will not appear by itself.
    bool HasFailedForPlay() const;

    /// Moves a staged client into place. Main thread.
    ClientSwap Swap();

private:
    struct Request {
        std::wstring baseUrl;
        std::wstring clientPath;
        std::wstring stagedPath;
        std::uint32_t archSetting = 0;
        bool checkOnly = false;
    };
    void Cancel(ClientUpdateOutcome now);
    void Run(const Request& request, const std::stop_token& stop);
    void Fetch(const Request& request, const std::wstring& publishedName, bool wants64Bit,
               const std::stop_token& stop);
    void End(const std::stop_token& stop, ClientUpdateOutcome outcome, std::wstring detail);
    void LogOnce(bool& logged, const char* line);

    std::atomic<ClientUpdateOutcome> outcome_{ClientUpdateOutcome::NotStarted};
    std::atomic<bool> needsUpdate_{false};

    mutable std::mutex detailLock_;  ///< also held where a run's end meets the next one's start
    std::wstring detail_;            ///< guarded by detailLock_

    // Main thread.
    std::wstring clientPath_;
    std::wstring stagedPath_;
    bool deferralLogged_ = false;  ///< each line once a run
    bool swapFailed_ = false;
    bool stagedMissing_ = false;  ///< at the last try: somebody has taken the staged client away

    std::jthread worker_;  ///< last, so that it ends before what it uses
};

}  // namespace Launcher
