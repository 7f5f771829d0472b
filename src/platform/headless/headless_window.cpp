#include "platform/headless/headless_window.h"

#include <algorithm>

namespace Platform {

HeadlessWindow::HeadlessWindow(Graphics& graphics, const WindowSpec& spec)
    : graphics_(graphics), position_{spec.x, spec.y}, size_{spec.width, spec.height} {}

bool HeadlessWindow::NextEvent(Event& event) {
    const std::lock_guard guard(mutex_);
    if (queue_.empty()) return false;
    event = queue_.front();
    queue_.pop_front();
    return true;
}

void HeadlessWindow::Push(const Event& event) {
    const std::lock_guard guard(mutex_);
    queue_.push_back(event);
}

void HeadlessWindow::Destroy() {
    if (exists_.exchange(false)) Push({.type = EventType::Destroyed});
    visible_ = false;
}

Created<DrawTarget> HeadlessWindow::CreateTarget(SurfaceKind, DeviceKind device) {
    ++targetsAsked;
    lastDevice = device;
    if (failingTargets_ > 0) {
        --failingTargets_;
        return GraphicsFailed;
    }
    const Size client = GetClientSize();
    return graphics_.CreateOffscreenTarget({std::max(1, client.width), std::max(1, client.height)});
}

void HeadlessWindow::ShowTopmost() {
    topmost = true;
    Show();
}

void HeadlessWindow::Show() {
    visible_ = true;
    Push({.type = EventType::Exposed});
}

void HeadlessWindow::Hide() {
    visible_ = false;
    foreground_ = false;
}

void HeadlessWindow::Minimize() {
    foreground_ = false;
    if (!minimized_.exchange(true)) Push({.type = EventType::Minimized});
}

void HeadlessWindow::Restore() {
    if (minimized_.exchange(false)) Push({.type = EventType::Resized, .size = GetClientSize()});
}

Rect HeadlessWindow::GetFrameRect() const {
    const std::lock_guard guard(mutex_);
    return {position_.x, position_.y, position_.x + size_.width, position_.y + size_.height};
}

Size HeadlessWindow::GetClientSize() const {
    const std::lock_guard guard(mutex_);
    return size_;
}

void HeadlessWindow::MoveTo(Point position) {
    const std::lock_guard guard(mutex_);
    // The pointer stands still on the desktop.
    pointer_.x -= position.x - position_.x;
    pointer_.y -= position.y - position_.y;
    position_ = position;
}

Point HeadlessWindow::GetCursorPosition() const {
    const std::lock_guard guard(mutex_);
    return {position_.x + pointer_.x, position_.y + pointer_.y};
}

void HeadlessWindow::PushPointer(EventType type, int x, int y, int press, int release) {
    const std::lock_guard guard(mutex_);
    buttons_ = static_cast<std::uint8_t>((buttons_ | press) & ~release);
    pointer_ = {x, y};
    queue_.push_back({.type = type, .buttons = buttons_, .point = pointer_});
}

void HeadlessWindow::PointerMove(int x, int y) {
    PushPointer(EventType::PointerMove, x, y);
}

void HeadlessWindow::PointerLeave() {
    Push({.type = EventType::PointerLeave});
}

void HeadlessWindow::LeftDown(int x, int y) {
    PushPointer(EventType::LeftDown, x, y, HeldLeft, 0);
}

void HeadlessWindow::LeftUp(int x, int y) {
    PushPointer(EventType::LeftUp, x, y, 0, HeldLeft);
}

void HeadlessWindow::RightDown(int x, int y) {
    PushPointer(EventType::RightDown, x, y, HeldRight, 0);
}

void HeadlessWindow::RightUp(int x, int y) {
    PushPointer(EventType::RightUp, x, y, 0, HeldRight);
}

void HeadlessWindow::Click(int x, int y) {
    PointerMove(x, y);
    LeftDown(x, y);
    LeftUp(x, y);
}

void HeadlessWindow::Turn(int x, int y, int wheelDelta, std::uint8_t modifiers) {
    Push({.type = EventType::Wheel,
          .modifiers = modifiers,
          .wheelDelta = wheelDelta,
          .point = {x, y}});
}

void HeadlessWindow::Press(int key, std::uint8_t modifiers) {
    const auto code = static_cast<std::uint16_t>(key);
    Push({.type = EventType::KeyDown, .modifiers = modifiers, .key = code});
    Push({.type = EventType::KeyUp, .modifiers = modifiers, .key = code});
}

void HeadlessWindow::Type(std::wstring_view text, std::uint8_t modifiers) {
    for (const wchar_t unit : text)
        Push({.type = EventType::Character, .modifiers = modifiers, .character = unit});
}

void HeadlessWindow::Resize(int width, int height) {
    const std::lock_guard guard(mutex_);
    size_ = {width, height};
    queue_.push_back({.type = EventType::Resized, .size = size_});
}

void HeadlessWindow::StealCapture() {
    captured = false;
    Push({.type = EventType::CaptureLost});
}

void HeadlessWindow::DestroyFromOutside() {
    Destroy();
}

}  // namespace Platform
