#include "core/spawn.h"

#include <string>

#include "platform/named_objects.h"

namespace Launcher {

namespace {

constexpr std::uint64_t ProbePauseMilliseconds = 400;
constexpr std::uint64_t IdleWindowAfterMilliseconds = 10'000;
constexpr std::uint64_t CeilingMilliseconds = 90'000;

}  // namespace

ReadyState GetReadyState(std::uint32_t processId) {
    Platform::NamedEvent event;
    const std::wstring name = L"Local\\TolvanOnline.Ready." + std::to_wstring(processId);
    if (!Platform::Succeeded(event.Open(name, Platform::EventWait))) return ReadyState::NoHandshake;
    return event.IsSet() ? ReadyState::Set : ReadyState::Unset;
}

void SpawnWatch::Begin(std::uint64_t nowMilliseconds) {
    inFlight_ = true;
    processId_ = 0;
    sinceTick_ = nowMilliseconds;
    probeTick_ = 0;
}

void SpawnWatch::Release() {
    inFlight_ = false;
    processId_ = 0;
}

std::optional<const char*> SpawnWatch::Look(std::uint64_t nowMilliseconds,
                                            const SpawnSignals& signals) {
    if (!inFlight_) return std::nullopt;
    const char* reason = Decide(nowMilliseconds, signals);
    if (!reason) return std::nullopt;
    Release();
    return reason;
}

const char* SpawnWatch::Decide(std::uint64_t nowMilliseconds, const SpawnSignals& signals) {
    const std::uint64_t elapsed = nowMilliseconds - sinceTick_;
    const ReadyState ready = signals.ready();
    if (ready == ReadyState::Set) {
        return "spawn: the client reports its login screen is up -- PLAY re-enabled";
    }
    // A client that holds its event unset is on its way: only the ceiling counts.
    if (ready == ReadyState::NoHandshake &&
        nowMilliseconds - probeTick_ >= ProbePauseMilliseconds) {
        probeTick_ = nowMilliseconds;
        if (processId_ != 0 && signals.hasEnded()) {
            return "spawn: the client exited before it was ready -- PLAY re-enabled";
        }
        if (elapsed >= IdleWindowAfterMilliseconds && signals.showsIdleWindow()) {
            return "spawn: this client does not handshake -- released on the old heuristic";
        }
    }
    return elapsed > CeilingMilliseconds
               ? "spawn: nothing reported ready in time -- PLAY re-enabled anyway"
               : nullptr;
}

}  // namespace Launcher
