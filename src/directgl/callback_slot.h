#pragma once

#include <memory>
#include <utility>

#include "directgl/types.h"

namespace DirectGL {

/// Holds the function for one kind of event of one widget.
///
/// It runs from a function that was moved out of the slot, so that it may fill or empty its own
/// slot, and an event of the same kind that it causes itself does not run it again.
class CallbackSlot {
public:
    /// An empty function empties the slot.
    void Set(WidgetCallback callback) {
        running_ = false;
        function_ = callback ? std::make_unique<WidgetCallback>(std::move(callback)) : nullptr;
    }
    void Clear() { Set(nullptr); }
    bool IsEmpty() const { return function_ == nullptr; }

    /// Runs the function, if there is one, and then puts it back unless it answered Done or the
    /// slot was set meanwhile. True when a function ran.
    bool Run(Window* widget) {
        if (!function_) return false;
        std::unique_ptr<WidgetCallback> function = std::move(function_);
        running_ = true;
        const WidgetEventRet answer = (*function)(widget);
        if (running_ && answer != WidgetEventRet::Done) function_ = std::move(function);
        running_ = false;
        return true;
    }

private:
    std::unique_ptr<WidgetCallback> function_;
    bool running_ = false;
};

}  // namespace DirectGL
