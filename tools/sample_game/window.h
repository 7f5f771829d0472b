#pragma once

#include <memory>
#include <string>

namespace SampleGame {

/// The game's window: visible, without an owner, plain.
class Window {
public:
    /// Null when there is no display to show it on. The size is that of the whole client area.
    static std::unique_ptr<Window> Show(const std::wstring& title, int width, int height);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// Answers what the system asks of the window. False once its user has closed it.
    bool Pump();

private:
    struct Implementation;
    explicit Window(std::unique_ptr<Implementation> implementation);
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace SampleGame
