#pragma once

#include "platform/window.h"

namespace Launcher {

/// What a run that is at rest does: it tells how the launcher's own update check ended, swaps a
/// staged launcher in and hands over to it, and swaps a staged client in. Main thread, every tick.
class ReadyWork {
public:
    /// time is the state loop's, in seconds; window may be null.
    void Step(double time, Platform::NativeWindow* window);

private:
    void FollowSelfUpdate(Platform::NativeWindow* window);
    void SwapLauncher(Platform::NativeWindow* window);
    void SwapClient();

    bool wasReady_ = false;
    bool selfUpdateDone_ = false;
    bool clientWaitLogged_ = false;
    double nextClientSwap_ = 0.0;
};

}  // namespace Launcher
