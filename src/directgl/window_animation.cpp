// What happens by itself: animations, the pulse, timers.

#include <cmath>

#include "directgl/gui.h"
#include "directgl/window.h"

namespace DirectGL {

namespace {

bool ReachedOrCrossed(float value, float target, float step) {
    return step > 0.0F ? value >= target : value <= target;
}

}  // namespace

double Window::TicksIn(double seconds) const {
    return std::max(1.0, (gui ? gui->GetUps() : 30) * seconds);
}

void Window::FadeTo(float target, double seconds, WidgetCallback callback) {
    opacityTarget = target;
    opacityStep = (target - opacity) / static_cast<float>(TicksIn(seconds));
    if (callback) Set(Slot::FadeDone, std::move(callback));
}

void Window::StepFade() {
    if (opacityStep == 0.0F || opacity == opacityTarget) return;
    opacity += opacityStep;
    if (ReachedOrCrossed(opacity, opacityTarget, opacityStep)) {
        opacity = opacityTarget;
        opacityStep = 0.0F;
        Run(Slot::FadeDone);
    }
    Invalidate();
}

void Window::StartMotion(Motion& motion, int fromA, int fromB, int toA, int toB,
                         double seconds) const {
    const auto ticks = static_cast<float>(TicksIn(seconds));
    motion = {.targetA = toA,
              .targetB = toB,
              .stepA = static_cast<float>(toA - fromA) / ticks,
              .stepB = static_cast<float>(toB - fromB) / ticks,
              .accumA = static_cast<float>(fromA),
              .accumB = static_cast<float>(fromB)};
}

bool Window::StepMotion(Motion& motion, int& a, int& b, bool& done) {
    if (motion.stepA == 0.0F && motion.stepB == 0.0F) return false;
    if (a == motion.targetA && b == motion.targetB) return false;
    const auto step = [](float& delta, float& accum, int target) {
        accum += delta;
        // The whole pixel decides: on the way down it is the target before the sum is.
        const int value = static_cast<int>(accum);
        if (delta != 0.0F && value != target &&
            !ReachedOrCrossed(accum, static_cast<float>(target), delta))
            return value;
        delta = 0.0F;
        return target;
    };
    a = step(motion.stepA, motion.accumA, motion.targetA);
    b = step(motion.stepB, motion.accumB, motion.targetB);
    done = motion.stepA == 0.0F && motion.stepB == 0.0F;
    return true;
}

void Window::MoveTo(Point target, double seconds, WidgetCallback callback) {
    StartMotion(move, x, y, target.x, target.y, seconds);
    if (callback) Set(Slot::MoveDone, std::move(callback));
}

void Window::StepMove() {
    int newX = x;
    int newY = y;
    bool done = false;
    if (!StepMotion(move, newX, newY, done)) return;
    SetPosition(newX, newY);
    if (done) Run(Slot::MoveDone);
}

void Window::ResizeTo(Size target, double seconds, WidgetCallback callback) {
    StartMotion(resize, width, height, target.width, target.height, seconds);
    if (callback) Set(Slot::ResizeDone, std::move(callback));
}

void Window::StepResize() {
    int newWidth = width;
    int newHeight = height;
    bool done = false;
    if (!StepMotion(resize, newWidth, newHeight, done)) return;
    SetSize(newWidth, newHeight);
    if (done) Run(Slot::ResizeDone);
}

int Window::AddTimer(double seconds, WidgetCallback callback) {
    timers.push_back({std::move(callback), Now() + seconds, seconds, ++lastTimerId});
    return lastTimerId;
}

void Window::RemoveTimer(int timerId) {
    std::erase_if(timers, [=](const Timer& timer) { return timer.timerId == timerId; });
}

void Window::RunTimers(double time) {
    if (timers.empty()) return;
    // By id, since a callback may add and remove timers, this one included.
    std::vector<int> ids;
    for (const Timer& timer : timers)
        ids.push_back(timer.timerId);
    const auto find = [this](int timerId) {
        return std::ranges::find(timers, timerId, &Timer::timerId);
    };
    for (const int timerId : ids) {
        auto timer = find(timerId);
        if (timer == timers.end() || timer->nextTime > time) continue;
        WidgetCallback callback = std::move(timer->callback);
        timer->callback = nullptr;
        const bool keep = !callback || callback(this) != WidgetEventRet::Done;
        timer = find(timerId);
        if (timer == timers.end()) continue;
        if (!keep) {
            timers.erase(timer);
            continue;
        }
        timer->callback = std::move(callback);
        timer->nextTime = time + timer->interval;
    }
}

void Window::StepPulse(double time) {
    if (!pulseEnabled || !visible || pulsePeriod <= 0.0F) return;
    double whole = 0.0;
    double phase = std::modf(time * 1000.0 / static_cast<double>(pulsePeriod), &whole);
    if (phase >= 0.5) phase = 1.0 - phase;
    opacity = (pulseMax - pulseMin) * 2.0F * static_cast<float>(phase) + pulseMin;
    Invalidate();
}

void Window::Update(double time) {
    StepFade();
    StepMove();
    StepResize();
    StepPulse(time);
    RunTimers(time);
    Run(Slot::Update);
    ForEachChild([time](Window& child) { child.Update(time); });
}

}  // namespace DirectGL
