#include "window.h"

#include <SDL2/SDL.h>

#include "platform/text.h"

namespace SampleGame {

namespace {

struct DestroyWindow {
    void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
};

}  // namespace

struct Window::Implementation {
    std::unique_ptr<SDL_Window, DestroyWindow> window;
};

std::unique_ptr<Window> Window::Show(const std::wstring& title, int width, int height) {
    // Without a display SDL would fall back to a driver that shows nothing.
    SDL_SetHint(SDL_HINT_VIDEODRIVER, "x11");
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return nullptr;
    auto implementation = std::make_unique<Implementation>();
    implementation->window.reset(SDL_CreateWindow(Platform::Utf8FromWide(title).c_str(),
                                                  SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED,
                                                  width, height, SDL_WINDOW_SHOWN));
    if (!implementation->window) return nullptr;
    return std::unique_ptr<Window>(new Window(std::move(implementation)));
}

Window::Window(std::unique_ptr<Implementation> implementation)
    : implementation_(std::move(implementation)) {}

Window::~Window() {
    implementation_.reset();
    SDL_Quit();
}

bool Window::Pump() {
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) {
        if (event.type == SDL_QUIT) return false;
    }
    return true;
}

}  // namespace SampleGame
