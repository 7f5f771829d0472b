#include "update/stand_down.h"

#include "platform/processes.h"

namespace Launcher {

namespace {

std::wstring EventName(std::uint32_t processId) {
    return L"Local\\TolvanHandoffWindow." + std::to_wstring(processId);
}

}  // namespace

void StandDownEvent::Create() {
    if (event_.IsOpen()) return;
    bool existed = false;
    // Without the event the stand-down comes at once: the replacement still starts.
    (void)event_.Create(EventName(Platform::OwnProcessId()), existed);
}

bool StandDownEvent::HasReplacementSignalled() {
    if (!event_.IsOpen()) return true;
    if (!event_.IsSet()) return false;
    event_.Close();
    return true;
}

void SignalOriginal(std::uint32_t processId) {
    Platform::NamedEvent event;
    // An original that is gone holds no event, and waits for nothing.
    if (Platform::Succeeded(event.Open(EventName(processId), Platform::EventModify)))
        (void)event.Set();
}

}  // namespace Launcher
