#include "core/predecessor.h"

#include "platform/clock.h"
#include "platform/processes.h"
#include "update/stand_down.h"

namespace Launcher {

namespace {

constexpr std::uint64_t LongestWaitMilliseconds = 15000;

}  // namespace

Wait LookAtWait(bool processEnded, std::uint64_t waitedMilliseconds) {
    if (processEnded) return Wait::Gone;
    return waitedMilliseconds >= LongestWaitMilliseconds ? Wait::Outstayed : Wait::Pending;
}

void Predecessor::Await(std::uint32_t processId) {
    processId_ = processId;
    sinceTick_ = Platform::TickMilliseconds();
    awaited_ = true;
}

void Predecessor::Release() const {
    if (processId_ != 0) SignalOriginal(processId_);
}

Wait Predecessor::Look() {
    const Wait wait = LookAtWait(Platform::HasProcessEnded(processId_),
                                 Platform::TickMilliseconds() - sinceTick_);
    if (wait != Wait::Pending) awaited_ = false;
    return wait;
}

}  // namespace Launcher
