#include "platform/host/gui/sdl_events.h"

#include <SDL2/SDL_keyboard.h>
#include <algorithm>
#include <array>

#include "platform/text.h"

namespace Platform::Host {

namespace {

struct KeyPair {
    SDL_Keycode from;
    std::uint16_t to;
};

/// Keys with numbers of their own; letters and digits are computed.
constexpr std::array Keys{
    KeyPair{SDLK_BACKSPACE, KeyBackspace},
    KeyPair{SDLK_TAB, KeyTab},
    KeyPair{SDLK_RETURN, KeyReturn},
    KeyPair{SDLK_KP_ENTER, KeyReturn},
    KeyPair{SDLK_ESCAPE, KeyEscape},
    KeyPair{SDLK_SPACE, 0x20},
    KeyPair{SDLK_PAGEUP, 0x21},
    KeyPair{SDLK_PAGEDOWN, 0x22},
    KeyPair{SDLK_END, KeyEnd},
    KeyPair{SDLK_HOME, KeyHome},
    KeyPair{SDLK_LEFT, KeyLeft},
    KeyPair{SDLK_UP, KeyUpArrow},
    KeyPair{SDLK_RIGHT, KeyRight},
    KeyPair{SDLK_DOWN, KeyDownArrow},
    KeyPair{SDLK_DELETE, KeyDelete},
};

std::uint16_t KeyFrom(SDL_Keycode key) {
    if (key >= 'a' && key <= 'z') return static_cast<std::uint16_t>(key - 'a' + 'A');
    if (key >= '0' && key <= '9') return static_cast<std::uint16_t>(key);
    const auto found = std::ranges::find(Keys, key, &KeyPair::from);
    return found == Keys.end() ? std::uint16_t{0} : found->to;
}

/// The keys that type a control character.
wchar_t ControlCharacter(std::uint16_t key) {
    constexpr std::array Typing{KeyBackspace, KeyTab, KeyReturn, KeyEscape};
    return std::ranges::find(Typing, key) == Typing.end() ? L'\0' : static_cast<wchar_t>(key);
}

std::uint8_t Modifiers(int state) {
    int bits = 0;
    if (state & KMOD_CTRL) bits |= ModifierControl;
    if (state & KMOD_ALT) bits |= ModifierAlt;
    if (state & KMOD_SHIFT) bits |= ModifierShift;
    return static_cast<std::uint8_t>(bits);
}

void AddKey(const SDL_KeyboardEvent& pressed, std::deque<Event>& queue) {
    Event event{.type = pressed.state == SDL_PRESSED ? EventType::KeyDown : EventType::KeyUp,
                .modifiers = Modifiers(pressed.keysym.mod),
                .key = KeyFrom(pressed.keysym.sym)};
    queue.push_back(event);
    const wchar_t typed = ControlCharacter(event.key);
    if (event.type != EventType::KeyDown || typed == 0) return;
    queue.push_back(
        {.type = EventType::Character, .modifiers = event.modifiers, .character = typed});
}

void AddText(const SDL_TextInputEvent& text, std::deque<Event>& queue) {
    for (const wchar_t unit : WideFromUtf8(text.text))
        queue.push_back({.type = EventType::Character,
                         .modifiers = Modifiers(SDL_GetModState()),
                         .character = unit});
}

void AddWindowEvent(const SDL_WindowEvent& window, bool captured, std::deque<Event>& queue) {
    SDL_Window* native = SDL_GetWindowFromID(window.windowID);
    switch (window.event) {
        case SDL_WINDOWEVENT_CLOSE:
            queue.push_back({.type = EventType::Close});
            return;
        case SDL_WINDOWEVENT_MINIMIZED:
            queue.push_back({.type = EventType::Minimized});
            return;
        case SDL_WINDOWEVENT_SIZE_CHANGED:
            queue.push_back({.type = EventType::Resized, .size = {window.data1, window.data2}});
            return;
        case SDL_WINDOWEVENT_RESTORED: {
            Size size;
            if (native) SDL_GetWindowSize(native, &size.width, &size.height);
            queue.push_back({.type = EventType::Resized, .size = size});
            return;
        }
        case SDL_WINDOWEVENT_EXPOSED:
            queue.push_back({.type = EventType::Exposed});
            return;
        case SDL_WINDOWEVENT_FOCUS_LOST:
            if (captured) queue.push_back({.type = EventType::CaptureLost});
            return;
        default:
            return;
    }
}

}  // namespace

void TranslateEvent(const SDL_Event& event, bool captured, std::deque<Event>& queue) {
    switch (event.type) {
        case SDL_WINDOWEVENT:
            return AddWindowEvent(event.window, captured, queue);
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            return AddKey(event.key, queue);
        case SDL_TEXTINPUT:
            return AddText(event.text, queue);
        default:
            return;
    }
}

}  // namespace Platform::Host
