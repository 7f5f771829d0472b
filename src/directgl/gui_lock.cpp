#include "directgl/gui_lock.h"

namespace DirectGL {

thread_local const GuiLock* GuiLock::held_ = nullptr;

GuiLock::Guard::Guard(GuiLock& lock) : taken_(lock.IsHeldByThisThread() ? nullptr : &lock) {
    if (!taken_) return;
    taken_->mutex_.lock();
    held_ = taken_;
}

GuiLock::Guard::~Guard() {
    if (!taken_) return;
    held_ = nullptr;
    taken_->mutex_.unlock();
}

}  // namespace DirectGL
