#include "platform/host/gui/sdl_window.h"

#include <SDL2/SDL.h>
#include <algorithm>
#include <cmath>
#include <poll.h>
#include <vector>
#include <xcb/shape.h>

#include "platform/clock.h"
#include "platform/host/gui/cairo_target.h"
#include "platform/host/gui/sdl_events.h"
#include "platform/host/gui/x_pointer.h"
#include "platform/host/gui/xlib_parts.h"
#include "platform/text.h"

namespace Platform::Host {

namespace {

/// SDL has clocks of its own to look after, so it gets its turn at least this often, in ticks.
constexpr std::uint64_t LongestSilence = 100;
/// How often to look whether a compositor has come or gone, in ticks.
constexpr std::uint64_t CompositorPause = 500;

int DepthOf(const XConnection& connection, xcb_window_t window) {
    const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
        connection.Get(), xcb_get_geometry(connection.Get(), window), nullptr));
    return geometry ? geometry->depth : 24;
}

/// Whether the last word about the pointer is where it is, and not that it has left.
bool TellWhereItIs(const std::deque<Event>& events) {
    const auto last = std::find_if(events.rbegin(), events.rend(), [](const Event& event) {
        return event.type >= EventType::PointerMove && event.type <= EventType::RightUp;
    });
    return last != events.rend() && last->type != EventType::PointerLeave;
}

}  // namespace

std::unique_ptr<SdlWindow> SdlWindow::Open(const WindowSpec& spec) {
    const XConnection connection;
    const xcb_visualid_t visual = connection.AlphaVisual();
    if (visual != 0)
        SDL_SetHint(SDL_HINT_VIDEO_X11_WINDOW_VISUALID, std::to_string(visual).c_str());
    SDL_Window* window = SDL_CreateWindow(Utf8FromWide(spec.title).c_str(), spec.x, spec.y,
                                          spec.width, spec.height, SDL_WINDOW_HIDDEN);
    if (!window) return nullptr;
    const xcb_window_t id = XWindowOf(window);
    if (id == 0) {
        SDL_DestroyWindow(window);
        return nullptr;
    }
    // SDL's requests are still on their way over its own connection.
    SDL_PumpEvents();
    return std::unique_ptr<SdlWindow>(
        new SdlWindow(window, id, DepthOf(connection, id), {spec.width, spec.height}));
}

SdlWindow::SdlWindow(SDL_Window* window, xcb_window_t id, int depth, Size size)
    : window_(window), id_(id), presenter_(id, depth), clientSize_(size) {
    TakePointer(window_);
    const std::uint32_t mask =
        XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
    xcb_change_window_attributes(watch_.Get(), id_, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(watch_.Get());
    cursors_[0].reset(SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_ARROW));
    cursors_[1].reset(SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_HAND));
    cursors_[2].reset(SDL_CreateSystemCursor(SDL_SYSTEM_CURSOR_IBEAM));
}

SdlWindow::~SdlWindow() {
    Destroy();
}

void SdlWindow::Post(EventType type) {
    const std::lock_guard guard(mutex_);
    queue_.push_back({.type = type});
}

void SdlWindow::Wake() {
    Post(EventType::Wake);
}

void SdlWindow::RequestClose() {
    Post(EventType::Close);
}

void SdlWindow::Destroy() {
    if (!window_) return;
    SDL_Window* window = std::exchange(window_, nullptr);
    // SDL waits for the window to disappear, for ever when somebody else has destroyed it: what
    // SDL keeps of such a window goes with the program.
    if (!exists_.exchange(false)) return;
    SDL_DestroyWindow(window);
    Post(EventType::Destroyed);
}

void SdlWindow::Watch(std::deque<Event>& events) {
    bool entered = false;
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(watch_.Get())}) {
        const int type = event->response_type & 0x7F;
        if (type == XCB_ENTER_NOTIFY) entered = true;
        if (type == XCB_LEAVE_NOTIFY) entered = false;
        if (type == XCB_DESTROY_NOTIFY && exists_.exchange(false))
            events.push_back({.type = EventType::Destroyed});
    }
    // After a press the buttons of now could be those after its release, which comes yet.
    if (entered && exists_ && !captured_ && !TellWhereItIs(events)) AddPointer(events);
}

void SdlWindow::AddPointer(std::deque<Event>& events) {
    // The place of now: what the pointer did since comes yet, on the other connection.
    const XReply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(watch_.Get(), xcb_query_pointer(watch_.Get(), id_), nullptr));
    if (!pointer || pointer->win_x < 0 || pointer->win_y < 0) return;
    const Size size = GetClientSize();
    if (pointer->win_x >= size.width || pointer->win_y >= size.height) return;
    events.push_back({.type = EventType::PointerMove,
                      .buttons = HeldButtons(pointer->mask),
                      .point = {pointer->win_x, pointer->win_y}});
}

void SdlWindow::FollowCompositor() {
    const std::uint64_t now = TickMilliseconds();
    if (!shown_ || now - lastLook_ < CompositorPause) return;
    lastLook_ = now;
    if (watch_.HasCompositor() != composited_) CutShape();
}

void SdlWindow::FollowEvent(const Event& event) {
    if (event.type == EventType::Minimized) minimized_ = true;
    if (event.type == EventType::Exposed) presenter_.MarkLost();
    if (event.type == EventType::CaptureLost) captured_ = false;
    if (event.type != EventType::Resized) return;
    minimized_ = false;
    presenter_.MarkLost();
    clientSize_ = event.size;
}

bool SdlWindow::HasNews() {
    const std::uint64_t now = TickMilliseconds();
    if (now - lastPump_ < LongestSilence) {
        if (HasReadXEvents(window_)) return true;
        std::array<pollfd, 2> connections{pollfd{XDescriptorOf(window_), POLLIN, 0},
                                          pollfd{xcb_get_file_descriptor(watch_.Get()), POLLIN, 0}};
        if (poll(connections.data(), connections.size(), 0) == 0) return false;
    }
    lastPump_ = now;
    return true;
}

void SdlWindow::Pump() {
    if (!window_ || !HasNews()) return;
    std::deque<Event> events;
    for (SDL_Event event; window_ && SDL_PollEvent(&event);) {
        TranslateEvent(event, captured_, events);
        TranslatePointer(event, window_, captured_, events);
        // SDL ends every grab of the pointer when it hears of the keyboard.
        if (captured_ && event.type == SDL_WINDOWEVENT &&
            event.window.event == SDL_WINDOWEVENT_FOCUS_GAINED)
            GrabPointer(window_);
    }
    Watch(events);
    FollowCompositor();
    const std::lock_guard guard(mutex_);
    for (const Event& event : events) {
        FollowEvent(event);
        queue_.push_back(event);
    }
}

bool SdlWindow::NextEvent(Event& event) {
    const auto take = [&] {
        const std::lock_guard guard(mutex_);
        if (queue_.empty()) return false;
        event = queue_.front();
        queue_.pop_front();
        return true;
    };
    if (take()) return true;
    Pump();
    return take();
}

Created<DrawTarget> SdlWindow::CreateTarget(SurfaceKind surface, DeviceKind) {
    if (!exists_) return GraphicsTargetLost;
    presenter_.SetOpaque(surface == SurfaceKind::Opaque);
    presenter_.MarkLost();
    const Size client = GetClientSize();
    const Size size{std::max(1, client.width), std::max(1, client.height)};
    auto target = std::make_unique<CairoTarget>(size, &presenter_);
    if (!target->IsValid()) return GraphicsOutOfMemory;
    return target;
}

void SdlWindow::MakeBorderless() {
    if (exists_) SDL_SetWindowBordered(window_, SDL_FALSE);
}

void SdlWindow::MakeLayered() {
    layered_ = true;
    CutShape();
}

void SdlWindow::SetRoundedRegion(int cornerSize) {
    cornerSize_ = cornerSize;
    presenter_.SetCornerRadius(cornerSize / 2);
    CutShape();
}

/// Where nothing blends, alpha shows as black: the window itself gets the shape there, with the
/// hard edge that this has.
void SdlWindow::CutShape() {
    if (!exists_ || cornerSize_ <= 0) return;
    std::vector<xcb_rectangle_t> rows;
    const Size size = GetClientSize();
    const CornerMask corners(cornerSize_ / 2);
    composited_ = watch_.HasCompositor();
    const bool blends = layered_ && composited_;
    for (int y = 0; y < size.height; ++y) {
        int inset = 0;
        while (!blends && inset < size.width / 2 && corners.CoverageIn(size, inset, y) < 128)
            ++inset;
        rows.push_back({static_cast<std::int16_t>(inset), static_cast<std::int16_t>(y),
                        static_cast<std::uint16_t>(size.width - 2 * inset), 1});
    }
    xcb_shape_rectangles(watch_.Get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_YX_BANDED, id_, 0, 0,
                         static_cast<std::uint32_t>(rows.size()), rows.data());
    xcb_flush(watch_.Get());
}

void SdlWindow::Show() {
    if (!exists_) return;
    const bool first = !std::exchange(shown_, true);
    if (first) {
        CutShape();
        presenter_.SetBackgroundFromFrame(true);
    }
    SDL_ShowWindow(window_);
    if (first) presenter_.SetBackgroundFromFrame(false);
}

void SdlWindow::ShowTopmost() {
    if (!exists_) return;
    SDL_SetWindowAlwaysOnTop(window_, SDL_TRUE);
    Show();
}

void SdlWindow::Hide() {
    if (exists_) SDL_HideWindow(window_);
}

void SdlWindow::Minimize() {
    if (exists_) SDL_MinimizeWindow(window_);
}

void SdlWindow::Restore() {
    if (exists_) SDL_RestoreWindow(window_);
}

bool SdlWindow::IsVisible() const {
    return exists_ && (SDL_GetWindowFlags(window_) & SDL_WINDOW_SHOWN) != 0;
}

bool SdlWindow::IsForeground() const {
    return exists_ && (SDL_GetWindowFlags(window_) & SDL_WINDOW_INPUT_FOCUS) != 0;
}

void SdlWindow::BringToForeground() {
    if (exists_) SDL_RaiseWindow(window_);
}

Rect SdlWindow::GetFrameRect() const {
    Rect rect;
    if (!exists_) return rect;
    SDL_GetWindowPosition(window_, &rect.left, &rect.top);
    const Size size = GetClientSize();
    rect.right = rect.left + size.width;
    rect.bottom = rect.top + size.height;
    return rect;
}

Size SdlWindow::GetClientSize() const {
    const std::lock_guard guard(mutex_);
    return clientSize_;
}

void SdlWindow::MoveTo(Point position) {
    if (!exists_) return;
    // SDL would wait for the window manager's answer, which is too slow for a drag.
    const std::uint32_t place[]{static_cast<std::uint32_t>(position.x),
                                static_cast<std::uint32_t>(position.y)};
    xcb_configure_window(watch_.Get(), id_, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, place);
    xcb_flush(watch_.Get());
}

void SdlWindow::SetTrackLimits(Size smallest, Size largest) {
    if (!exists_) return;
    if (smallest != Size{}) SDL_SetWindowMinimumSize(window_, smallest.width, smallest.height);
    if (largest != Size{}) SDL_SetWindowMaximumSize(window_, largest.width, largest.height);
}

std::uint32_t SdlWindow::GetDpi() const {
    float dpi = 0.0F;
    if (!exists_ || SDL_GetDisplayDPI(SDL_GetWindowDisplayIndex(window_), &dpi, nullptr, nullptr))
        return 0;
    return static_cast<std::uint32_t>(std::lround(dpi));
}

void SdlWindow::SetCursor(CursorShape shape) {
    SDL_SetCursor(cursors_[static_cast<std::size_t>(shape)].get());
}

void SdlWindow::SetCapture() {
    if (!exists_) return;
    captured_ = true;
    GrabPointer(window_);
}

void SdlWindow::ReleaseCapture() {
    if (!captured_) return;
    captured_ = false;
    if (exists_) LetPointerGo(window_);
}

Point SdlWindow::GetCursorPosition() const {
    // SDL answers with an old place while the pointer is captured.
    const xcb_screen_t* screen = watch_.Screen();
    if (!screen) return {};
    const XReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
        watch_.Get(), xcb_query_pointer(watch_.Get(), screen->root), nullptr));
    return pointer ? Point{pointer->root_x, pointer->root_y} : Point{};
}

}  // namespace Platform::Host
