#pragma once

#include <functional>
#include <string>
#include <vector>

#include "directgl/gui.h"
#include "directgl/image_resource.h"
#include "directgl/input.h"
#include "directgl/text.h"
#include "platform/headless/headless_window.h"
#include "platform/headless/held_clock.h"

namespace Gallery {

/// The pages' size, that of the launcher's window.
inline constexpr int Width = 360;
inline constexpr int Height = 540;

/// What a step of a sheet's script acts on: the pointer and keys of the window, and the time.
class Stage {
public:
    Stage(DirectGL::Gui& gui, Platform::HeadlessWindow& window, Platform::HeldClock& clock)
        : gui_(gui), window_(window), clock_(clock) {}

    /// The middle of a widget, for the pointer.
    static DirectGL::Point MiddleOf(const DirectGL::Window* widget);
    void PointAt(const DirectGL::Window* widget);
    void PressOn(const DirectGL::Window* widget);
    void ReleaseOn(const DirectGL::Window* widget);
    void Click(const DirectGL::Window* widget);
    Platform::HeadlessWindow& Native() { return window_; }
    /// Lets the seconds pass, with the updates of the time at 60 a second.
    void Wait(double seconds);

private:
    void Settle();

    DirectGL::Gui& gui_;
    Platform::HeadlessWindow& window_;
    Platform::HeldClock& clock_;
};

/// One step of a script; a picture is taken after it.
struct Step {
    std::string name;
    std::function<void(Stage&)> act;
};

/// A page of widgets with the script that leads them through their states.
struct Sheet {
    std::string name;
    /// Fills the root; the steps refer to what it made.
    std::function<std::vector<Step>(DirectGL::Window* root)> build;
};

const std::vector<Sheet>& AllSheets();

// Parts of the sheets.

DirectGL::ColorRGBA Rgb(unsigned hex, float alpha = 1.0F);
/// A caption in small grey letters.
DirectGL::Text* Caption(DirectGL::Window* parent, int x, int y, const std::wstring& text);
DirectGL::Text* Label(DirectGL::Window* parent, int x, int y, const std::wstring& text,
                      unsigned size, const DirectGL::ColorRGBA& color, unsigned weight = 400,
                      const std::wstring& family = L"Inter");
DirectGL::Window* Box(DirectGL::Window* parent, int x, int y, int width, int height,
                      const DirectGL::WindowStyle& style, int radius = 0);

/// A field for text with a frame around it.
DirectGL::Input* Field(DirectGL::Window* parent, int x, int y, int width, int height);

template <class T>
T* Put(DirectGL::Window* parent, int x, int y, int width, int height) {
    T* widget = parent->Create<T>();
    widget->SetPosition(x, y);
    widget->SetSize(width, height);
    return widget;
}

/// A small landscape, opaque; and a star on clear ground.
DirectGL::ImageHandle Landscape(const DirectGL::Gui& gui, int width, int height);
DirectGL::ImageHandle Star(const DirectGL::Gui& gui, int size, unsigned hex);

// One each in a file of its name.
Sheet SurfacesSheet();
Sheet TextsSheet();
Sheet ButtonsSheet();
Sheet ControlsSheet();
Sheet ImagesSheet();
Sheet ModalSheet();

}  // namespace Gallery
