#include "platform/headless/held_clock.h"

namespace Platform {

double HeldClock::Seconds() {
    const std::lock_guard guard(mutex_);
    return now_;
}

void HeldClock::Sleep(std::uint32_t milliseconds) {
    std::unique_lock guard(mutex_);
    const double end = now_ + milliseconds / 1000.0;
    if (std::this_thread::get_id() == owner_) {
        now_ = end;
        changed_.notify_all();
        return;
    }
    sleeps_.push_back(milliseconds);
    ++sleepers_;
    changed_.notify_all();
    // Half a microsecond of play: sums of milliseconds are not exact.
    changed_.wait(guard, [&] { return released_ || now_ + 5e-7 >= end; });
    --sleepers_;
}

void HeldClock::SetFineSleep(bool fine) {
    const std::lock_guard guard(mutex_);
    fineDepth_ += fine ? 1 : -1;
}

void HeldClock::Advance(double seconds) {
    const std::lock_guard guard(mutex_);
    now_ += seconds;
    changed_.notify_all();
}

void HeldClock::Release() {
    const std::lock_guard guard(mutex_);
    released_ = true;
    changed_.notify_all();
}

void HeldClock::WaitForSleepers(int count) {
    std::unique_lock guard(mutex_);
    changed_.wait(guard, [&] { return sleepers_ >= count; });
}

std::vector<std::uint32_t> HeldClock::Sleeps() {
    const std::lock_guard guard(mutex_);
    return sleeps_;
}

int HeldClock::FineDepth() {
    const std::lock_guard guard(mutex_);
    return fineDepth_;
}

}  // namespace Platform
