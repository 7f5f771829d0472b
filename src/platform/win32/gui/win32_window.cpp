#include "platform/win32/gui/win32_window.h"

#include <algorithm>
#include <utility>

#include "platform/win32/gui/win32_events.h"

namespace Platform::Win32 {

namespace {

constexpr UINT StayInPlace = SWP_NOMOVE | SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;

GraphicsResult LastResult() {
    return ResultOf(HRESULT_FROM_WIN32(GetLastError()));
}

void RegisterWindowClass(const wchar_t* name, WNDPROC procedure) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = name;
    // A second window's class is there already; without a class no window comes.
    RegisterClassExW(&windowClass);
}

}  // namespace

Created<NativeWindow> Win32Window::Open(const WindowSpec& spec, Direct2DGraphics& graphics) {
    RegisterWindowClass(spec.title.c_str(), Procedure);
    std::unique_ptr<Win32Window> made(new Win32Window(graphics));
    made->SetCursor(CursorShape::Arrow);
    const HWND window = CreateWindowExW(
        0, spec.title.c_str(), spec.title.c_str(), WS_OVERLAPPEDWINDOW, spec.x, spec.y, spec.width,
        spec.height, nullptr, nullptr, GetModuleHandleW(nullptr), made.get());
    if (!window) return LastResult();
    // What creating it brings is no change yet.
    made->queue_.clear();
    return made;
}

Win32Window::~Win32Window() {
    Destroy();
}

void Win32Window::Destroy() {
    // The procedure notes the end.
    if (window_) DestroyWindow(window_);
}

void Win32Window::Post(const Event& event) {
    const std::lock_guard guard(mutex_);
    queue_.push_back(event);
}

bool Win32Window::NextEvent(Event& event) {
    const auto take = [&] {
        const std::lock_guard guard(mutex_);
        if (queue_.empty()) return false;
        event = queue_.front();
        queue_.pop_front();
        return true;
    };
    for (;;) {
        if (take()) return true;
        MSG message;
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return take();
        if (message.message == WM_QUIT) RequestClose();
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

LRESULT CALLBACK Win32Window::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* created = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        auto* self = static_cast<Win32Window*>(created->lpCreateParams);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
        self->window_ = window;
    }
    auto* self = reinterpret_cast<Win32Window*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const auto answer = self ? self->OnMessage(message, wParam, lParam) : std::optional<LRESULT>();
    return answer ? *answer : DefWindowProcW(window, message, wParam, lParam);
}

std::optional<LRESULT> Win32Window::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (const auto input = TranslateInput(window_, message, wParam, lParam)) {
        if (message == WM_MOUSEMOVE) WatchPointer();
        Post(*input);
        return 0;
    }
    switch (message) {
        case WM_CLOSE:
            RequestClose();
            return 0;
        case WM_DESTROY:
            SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
            window_ = nullptr;
            Post({.type = EventType::Destroyed});
            return 0;
        case WM_SIZE:
            OnSize(wParam, lParam);
            return 0;
        case WM_PAINT:
            return OnPaint();
        case WM_ERASEBKGND:
            return 1;
        case WM_SETCURSOR:
            if (LOWORD(lParam) != HTCLIENT) return std::nullopt;
            ::SetCursor(cursor_);
            return 1;
        case WM_GETMINMAXINFO:
            LimitTracking(*reinterpret_cast<MINMAXINFO*>(lParam));
            return 0;
        case WM_MOUSELEAVE:
            OnPointerLeft();
            return 0;
        case WM_CAPTURECHANGED:
            OnCaptureChanged(lParam);
            return 0;
        default:
            return std::nullopt;
    }
}

LRESULT Win32Window::OnPaint() {
    PAINTSTRUCT paint;
    BeginPaint(window_, &paint);
    EndPaint(window_, &paint);
    Post({.type = EventType::Exposed});
    return 0;
}

void Win32Window::OnSize(WPARAM how, LPARAM size) {
    const bool wasIcon = std::exchange(isIcon_, how == SIZE_MINIMIZED);
    if (isIcon_) return Post({.type = EventType::Minimized});
    // The system tells the size again at many a change that has nothing to do with it.
    const Size now{LOWORD(size), HIWORD(size)};
    if (std::exchange(lastSize_, now) == now && !wasIcon) return;
    Post({.type = EventType::Resized, .size = now});
}

void Win32Window::WatchPointer() {
    if (watching_) return;
    TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, window_, 0};
    watching_ = TrackMouseEvent(&track) != FALSE;
}

bool Win32Window::IsUnderPointer() const {
    POINT place;
    return window_ && GetCursorPos(&place) && WindowFromPoint(place) == window_;
}

void Win32Window::OnPointerLeft() {
    watching_ = false;
    if (!captured_) Post({.type = EventType::PointerLeave});
}

void Win32Window::OnCaptureChanged(LPARAM taker) {
    if (!captured_ || reinterpret_cast<HWND>(taker) == window_) return;
    captured_ = false;
    Post({.type = EventType::CaptureLost});
    LookForPointer();
}

void Win32Window::LookForPointer() {
    watching_ = false;
    if (IsUnderPointer()) return WatchPointer();
    // It has left while it was captured, which nobody tells.
    Post({.type = EventType::PointerLeave});
}

void Win32Window::LimitTracking(MINMAXINFO& limits) const {
    if (smallest_ != Size{}) limits.ptMinTrackSize = {smallest_.width, smallest_.height};
    if (largest_ != Size{}) limits.ptMaxTrackSize = {largest_.width, largest_.height};
}

Created<DrawTarget> Win32Window::CreateTarget(SurfaceKind surface, DeviceKind device) {
    const HWND window = window_;
    if (!window) return GraphicsTargetLost;
    const Size client = GetClientSize();
    const Size size{std::max(1, client.width), std::max(1, client.height)};
    if (surface == SurfaceKind::Opaque) return graphics_.CreateClientTarget(size, window);
    const float cornerRadius = static_cast<float>(cornerSize_) / 2.0F;
    return graphics_.CreateLayeredTarget(size, device, window, cornerRadius);
}

void Win32Window::MakeBorderless() {
    constexpr LONG Frame = WS_CAPTION | WS_THICKFRAME | WS_SYSMENU | WS_MAXIMIZEBOX;
    // The taskbar minimises a window only if it has the box for it.
    constexpr auto Plain = static_cast<LONG>(WS_POPUP | WS_MINIMIZEBOX);
    SetWindowLongW(window_, GWL_STYLE, (GetWindowLongW(window_, GWL_STYLE) & ~Frame) | Plain);
    SetWindowLongW(window_, GWL_EXSTYLE, GetWindowLongW(window_, GWL_EXSTYLE) | WS_EX_APPWINDOW);
    SetWindowPos(window_, nullptr, 0, 0, 0, 0, StayInPlace | SWP_FRAMECHANGED);
}

void Win32Window::SetRoundedRegion(int cornerSize) {
    cornerSize_ = cornerSize;
    const Size size = GetClientSize();
    const HRGN region =
        CreateRoundRectRgn(0, 0, size.width + 1, size.height + 1, cornerSize, cornerSize);
    // The system takes the region over.
    if (region && !SetWindowRgn(window_, region, TRUE)) DeleteObject(region);
}

void Win32Window::MakeLayered() {
    SetWindowLongW(window_, GWL_EXSTYLE, GetWindowLongW(window_, GWL_EXSTYLE) | WS_EX_LAYERED);
}

void Win32Window::ShowTopmost() {
    SetWindowPos(window_, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
}

bool Win32Window::IsForeground() const {
    // An icon may still be called foreground where there is no other window.
    return window_ && !IsIconic(window_) && GetForegroundWindow() == window_;
}

void Win32Window::BringToForeground() {
    // Who shares the input of the program in front may take its place.
    const DWORD inFront = GetWindowThreadProcessId(GetForegroundWindow(), nullptr);
    const DWORD own = GetCurrentThreadId();
    const bool attached =
        inFront != 0 && inFront != own && AttachThreadInput(own, inFront, TRUE) != FALSE;
    SetForegroundWindow(window_);
    BringWindowToTop(window_);
    if (attached) AttachThreadInput(own, inFront, FALSE);
}

Rect Win32Window::GetFrameRect() const {
    RECT rect{};
    GetWindowRect(window_, &rect);
    return {rect.left, rect.top, rect.right, rect.bottom};
}

Size Win32Window::GetClientSize() const {
    RECT rect{};
    GetClientRect(window_, &rect);
    return {rect.right, rect.bottom};
}

void Win32Window::MoveTo(Point position) {
    SetWindowPos(window_, nullptr, position.x, position.y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Win32Window::SetTrackLimits(Size smallest, Size largest) {
    smallest_ = smallest;
    largest_ = largest;
}

std::uint32_t Win32Window::GetDpi() const {
    // Windows 7 and 8 do not have it.
    using GetDpiCall = UINT WINAPI(HWND);
    const auto getDpi = reinterpret_cast<GetDpiCall*>(
        GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow"));
    return getDpi ? getDpi(window_) : 0;
}

void Win32Window::SetCursor(CursorShape shape) {
    const wchar_t* const names[]{IDC_ARROW, IDC_HAND, IDC_IBEAM};
    cursor_ = LoadCursorW(nullptr, names[static_cast<std::size_t>(shape)]);
    // Otherwise it would show at the next move only.
    if (IsUnderPointer()) ::SetCursor(cursor_);
}

void Win32Window::SetCapture() {
    captured_ = true;
    ::SetCapture(window_);
}

void Win32Window::ReleaseCapture() {
    if (!std::exchange(captured_, false)) return;
    ::ReleaseCapture();
    LookForPointer();
}

Point Win32Window::GetCursorPosition() const {
    POINT place{};
    GetCursorPos(&place);
    return {place.x, place.y};
}

}  // namespace Platform::Win32
