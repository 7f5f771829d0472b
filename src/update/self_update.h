#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "update/stand_down.h"

/// Keeps the launcher's own executable current: a worker asks which launcher is published, fetches
/// it beside the running one as ".new" and checks it; the state loop then swaps the two and starts
/// the new one. Nothing that fails here hinders the game.
namespace Launcher {

enum class SelfUpdateOutcome : std::int32_t {
    NotStarted = 0,
    Disabled = 1,  ///< this program's name is not the published one
    Running = 2,
    UpToDate = 3,
    CheckFailed = 4,  ///< no usable answer
    Failed = 5,       ///< there is a newer one, and it could not be fetched
    Available = 6,    ///< there is a newer one, and it was not to be fetched
    Staged = 7,       ///< the newer one stands as ".new", checked
};

struct WindowPosition {
    int x = 0;
    int y = 0;
};

class SelfUpdate {
public:
    SelfUpdate() = default;
    ~SelfUpdate() { Stop(); }
    SelfUpdate(const SelfUpdate&) = delete;
    SelfUpdate& operator=(const SelfUpdate&) = delete;

    /// One check per run of the program: a second call does nothing. Main thread.
    void Start(bool checkOnly);
    /// Cancels and joins the worker. Main thread.
    void Stop();

    SelfUpdateOutcome Outcome() const { return outcome_; }  ///< Any thread.
    std::wstring Detail() const;                            ///< The reason in words. Any thread.

    /// Only when staged: puts the new launcher in the running one's place and starts it, at the
    /// window's position where there is one. event is made before that, so that this window can
    /// stay until the new one draws. On false the running launcher stands as it was. Main thread.
    bool Apply(StandDownEvent& event, std::optional<WindowPosition> position);

private:
    void Run(bool checkOnly);
    void End(SelfUpdateOutcome outcome, std::wstring detail);
    /// Why there is no newer launcher at staged; empty when there is.
    std::wstring Fetch(const std::wstring& staged, std::uint32_t publishedCrc);

    std::atomic<SelfUpdateOutcome> outcome_{SelfUpdateOutcome::NotStarted};
    std::atomic<bool> cancelled_{false};
    std::thread worker_;
    mutable std::mutex detailLock_;
    std::wstring detail_;  ///< guarded by detailLock_
};

/// Deletes the staged file and the old copies of earlier swaps, at each start before the check.
void DeleteSelfUpdateLeftovers();

}  // namespace Launcher
