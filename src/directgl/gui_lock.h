#pragma once

#include <mutex>

namespace DirectGL {

/// The one lock of the widget tree. It is not recursive; each thread remembers by itself whether
/// it holds it, so that a guard inside a guard does nothing.
class GuiLock {
public:
    GuiLock() = default;
    GuiLock(const GuiLock&) = delete;
    GuiLock& operator=(const GuiLock&) = delete;

    bool IsHeldByThisThread() const { return held_ == this; }

    /// Holds the lock for as long as it lives.
    class [[nodiscard]] Guard {
    public:
        explicit Guard(GuiLock& lock);
        ~Guard();
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        GuiLock* taken_;  ///< null when an outer guard of this thread holds it
    };

private:
    std::mutex mutex_;
    static thread_local const GuiLock* held_;
};

}  // namespace DirectGL
