#pragma once

#include <string>

#include "directgl/button.h"
#include "directgl/input.h"
#include "directgl/modal.h"
#include "directgl/scrollbar.h"
#include "directgl/toggle.h"

namespace Gallery {

/// A page of controls that do something, for whoever wants to try them, and for tests that come in
/// through the window system. Describe tells what they did.
class Playground {
public:
    /// Fills the root. The controls' callbacks refer to this object, which has to outlive them.
    explicit Playground(DirectGL::Window* root);
    Playground(const Playground&) = delete;
    Playground& operator=(const Playground&) = delete;

    /// Lines "name=value" in UTF-8: each control's state, and its place on the window as
    /// "name.place=left,top,right,bottom".
    std::string Describe() const;

private:
    void MakeButtons(DirectGL::Window* root);
    void MakeFields(DirectGL::Window* root);
    void MakeDragArea(DirectGL::Window* root);
    void MakeModal(DirectGL::Window* root);

    DirectGL::Button* press_ = nullptr;
    DirectGL::Button* opener_ = nullptr;
    DirectGL::Button* minimizer_ = nullptr;
    DirectGL::Toggle* toggle_ = nullptr;
    DirectGL::Input* first_ = nullptr;
    DirectGL::Input* second_ = nullptr;
    DirectGL::Scrollbar* bar_ = nullptr;
    DirectGL::Window* area_ = nullptr;
    DirectGL::Window* knob_ = nullptr;
    DirectGL::Modal* modal_ = nullptr;
    int clicks_ = 0;
    int rightClicks_ = 0;
    int wheelUp_ = 0;  ///< notches
    int wheelDown_ = 0;
    int wheelModifiers_ = 0;
};

}  // namespace Gallery
