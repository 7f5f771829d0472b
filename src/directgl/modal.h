#pragma once

#include "directgl/image_resource.h"
#include "directgl/window.h"

namespace DirectGL {

/// Dims what lies behind it and takes every press meant for that. Panels on it take their own.
class Modal : public Window {
public:
    static constexpr WindowType Type = WindowType::Modal;

    explicit Modal(Gui* itsGui) : Window(itsGui) {}

    void SetDimColor(const ColorRGBA& color);
    /// An image instead of the colour; null takes it away.
    void SetBackdrop(const ImageHandle& image);
    /// Whether a press beside the panels counts at all.
    void SetCloseOnBackdrop(bool value) { closeOnBackdrop = value; }
    /// Runs on a press beside the panels.
    void SetBackdropClicked(WidgetCallback callback) { backdropClicked.Set(std::move(callback)); }

    void Draw() override;
    void OnMouseUp() override;
    void CreateDeviceObjects() override;
    void ReleaseDeviceObjects() override;

private:
    ColorRGBA dimColor{0.0F, 0.0F, 0.0F, 0.5F};
    ImageResource backdrop;
    bool closeOnBackdrop = true;
    CallbackSlot backdropClicked;
};

}  // namespace DirectGL
