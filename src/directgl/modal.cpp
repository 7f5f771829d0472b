#include "directgl/modal.h"

#include "directgl/gui.h"

namespace DirectGL {

void Modal::SetDimColor(const ColorRGBA& color) {
    dimColor = color;
    Invalidate();
}

void Modal::SetBackdrop(const ImageHandle& image) {
    backdrop.Set(gui, image);
    Invalidate();
}

void Modal::Draw() {
    UpdateClipRect();
    if (gui && gui->GetTarget()) {
        const float effective = GetEffectiveOpacity();
        const RectF rect = Platform::ToRectF(GetAbsoluteRect());
        if (backdrop.GetBitmap()) {
            gui->GetTarget()->DrawBitmap(*backdrop.GetBitmap(), rect, effective);
        } else if (Platform::Brush* brush = gui->GetSolidColorBrush(dimColor)) {
            brush->SetOpacity(effective * dimColor.alpha);
            gui->GetTarget()->FillRectangle(rect, *brush);
        }
    }
    DrawChildren();
}

void Modal::OnMouseUp() {
    if (closeOnBackdrop && Contains(GetMouse())) backdropClicked.Run(this);
    Window::OnMouseUp();
}

void Modal::CreateDeviceObjects() {
    backdrop.CreateBitmap(gui);
    Window::CreateDeviceObjects();
}

void Modal::ReleaseDeviceObjects() {
    backdrop.ReleaseBitmap();
    Window::ReleaseDeviceObjects();
}

}  // namespace DirectGL
