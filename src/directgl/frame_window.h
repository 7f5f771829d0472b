#pragma once

#include "directgl/window.h"

namespace DirectGL {

/// A widget that shows its children only inside of its rectangle, and inside of its rounded
/// corners if it has any. The pointer, too, reaches them only there.
class FrameWindow : public Window {
public:
    static constexpr WindowType Type = WindowType::FrameWindow;

    using Window::Window;
    void UpdateClipRect() override;
    void Draw() override;
    void DrawChildren() override;
};

}  // namespace DirectGL
