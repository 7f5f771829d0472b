#include "directgl/frame_window.h"

#include "directgl/gui.h"

namespace DirectGL {

void FrameWindow::UpdateClipRect() {
    clipRect = GetAbsoluteRect();
    if (!parent) return;
    const Rect outer = parent->GetClipRect();
    clipRect = {std::max(clipRect.left, outer.left), std::max(clipRect.top, outer.top),
                std::min(clipRect.right, outer.right), std::min(clipRect.bottom, outer.bottom)};
}

void FrameWindow::Draw() {
    DrawBackground();
    DrawChildren();
}

void FrameWindow::DrawChildren() {
    Platform::DrawTarget* target = gui ? gui->GetTarget() : nullptr;
    if (!target) {
        Window::DrawChildren();
        return;
    }
    UpdateClipRect();
    const RectF clip = Platform::ToRectF(clipRect);
    if (cornerRadius < 1)
        target->PushClip(clip);
    else
        target->PushRoundedClip(clip, static_cast<float>(cornerRadius));
    Window::DrawChildren();
    target->PopClip();
}

}  // namespace DirectGL
