#pragma once

#include <cstdint>
#include <functional>
#include <optional>

/// The client that is being started, and when PLAY may be pressed again. A client may take part in
/// the ready handshake or not, so a ladder of signals decides, each with a time limit of its own.
namespace Launcher {

enum class ReadyState : std::int32_t {
    NoHandshake = 0,  ///< the client has made no event
    Unset = 1,
    Set = 2,  ///< its login screen is up
};

/// Looks at the client's event "Local\TolvanOnline.Ready." and its process id.
ReadyState GetReadyState(std::uint32_t processId);

/// What the ladder looks at; asked only where it decides.
struct SpawnSignals {
    std::function<ReadyState()> ready;
    std::function<bool()> hasEnded;
    std::function<bool()> showsIdleWindow;
};

/// The watch over one start. Main thread, or a test's.
class SpawnWatch {
public:
    /// The time of the press; the process id follows once it is known.
    void Begin(std::uint64_t nowMilliseconds);
    void SetProcess(std::uint32_t processId) { processId_ = processId; }
    void Release();
    bool IsInFlight() const { return inFlight_; }
    std::uint32_t ProcessId() const { return processId_; }

    /// Looks once. When PLAY is released the answer is the line that says why.
    std::optional<const char*> Look(std::uint64_t nowMilliseconds, const SpawnSignals& signals);

private:
    const char* Decide(std::uint64_t nowMilliseconds, const SpawnSignals& signals);

    bool inFlight_ = false;
    std::uint32_t processId_ = 0;
    std::uint64_t sinceTick_ = 0;
    std::uint64_t probeTick_ = 0;
};

}  // namespace Launcher
