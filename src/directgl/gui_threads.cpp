// The message loop and the two threads beside it.

#include "directgl/gui.h"

namespace DirectGL {

namespace {

std::uint32_t PauseFor(std::uint32_t perSecond, std::uint32_t withoutTarget) {
    return perSecond == 0 ? withoutTarget : static_cast<std::uint32_t>(1000.0 / perSecond);
}

}  // namespace

bool Gui::StartRenderingThread() {
    if (renderThread_.joinable()) return false;
    renderThread_ = std::thread([this] { _RenderLoop(); });
    return true;
}

bool Gui::StartUpdatingThread() {
    if (updateThread_.joinable()) return false;
    updateThread_ = std::thread([this] { _UpdateLoop(); });
    return true;
}

void Gui::_RenderLoop() {
    Platform::TimeSource& time = desktop_.GetTimeSource();
    time.SetFineSleep(true);
    while (!stopThreads_) {
        RenderPass();
        time.Sleep(PauseFor(fps_, 16));
    }
    time.SetFineSleep(false);
}

void Gui::_UpdateLoop() {
    while (!stopThreads_) {
        UpdatePass();
        desktop_.GetTimeSource().Sleep(PauseFor(ups_, 33));
    }
}

void Gui::_StopThreads() {
    stopThreads_ = true;
    if (renderThread_.joinable()) renderThread_.join();
    if (updateThread_.joinable()) updateThread_.join();
}

void Gui::MessageLoop(const std::function<double(double time)>& callback,
                      std::unique_ptr<Guard> opening) {
    if (!HasWindow()) return;
    while (!closing_) {
        if (!PumpEvents()) break;
        double pause = 1.0;
        {
            const Guard guard(*this);
            if (callback) pause = callback(Now());
            _ApplyCursor();
        }
        opening.reset();
        if (pause > 0.0) desktop_.GetTimeSource().Sleep(static_cast<std::uint32_t>(pause));
    }
    // The threads may still wait for it.
    opening.reset();
    _StopThreads();
}

void Gui::Quit() {
    closing_ = true;
    if (window_) window_->Wake();
}

}  // namespace DirectGL
