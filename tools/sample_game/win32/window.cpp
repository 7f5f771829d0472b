#include "window.h"

#include <windows.h>

namespace SampleGame {

namespace {

constexpr const wchar_t* ClassName = L"TolvanSampleGame";

LRESULT CALLBACK AnswerMessage(HWND window, UINT message, WPARAM wide, LPARAM extra) {
    if (message == WM_DESTROY) {
        PostQuitMessage(0);
        return 0;
    }
    return DefWindowProcW(window, message, wide, extra);
}

}  // namespace

struct Window::Implementation {
    HWND window = nullptr;
};

std::unique_ptr<Window> Window::Show(const std::wstring& title, int width, int height) {
    const HINSTANCE program = GetModuleHandleW(nullptr);
    WNDCLASSW description{};
    description.lpfnWndProc = AnswerMessage;
    description.hInstance = program;
    description.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    description.lpszClassName = ClassName;
    RegisterClassW(&description);
    RECT area{0, 0, width, height};
    AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
    auto implementation = std::make_unique<Implementation>();
    implementation->window = CreateWindowW(
        ClassName, title.c_str(), WS_OVERLAPPEDWINDOW | WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT,
        area.right - area.left, area.bottom - area.top, nullptr, nullptr, program, nullptr);
    if (implementation->window == nullptr) return nullptr;
    return std::unique_ptr<Window>(new Window(std::move(implementation)));
}

Window::Window(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}

Window::~Window() {
    DestroyWindow(implementation_->window);
}

bool Window::Pump() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) return false;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    // Wine takes a program for idle only once it waits for its messages.
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 1, QS_ALLINPUT);
    return true;
}

}  // namespace SampleGame
