#include "directgl/image.h"

#include "directgl/gui.h"

namespace DirectGL {

void Image::SetImageFromBuffer(const std::byte* bytes, std::size_t size) {
    if (!bytes || size == 0 || !gui) return;
    SetImageFromHandle(Utilities::MakeResourceHandle({bytes, size}));
}

void Image::SetImageFromHandle(const ImageHandle& handle) {
    if (!handle || !gui) return;
    image.Set(gui, handle);
    naturalWidth = naturalHeight = 0.0F;
    // The size is known from the bytes, whether or not there is a target for the bitmap yet.
    const auto natural = gui->GetGraphics().GetImageCodec().ReadSize(handle->bytes);
    const bool shown = image.GetBitmap() || !gui->GetTarget();
    if (natural && shown) TakeNaturalSize(*natural);
    Invalidate();
}

void Image::TakeNaturalSize(Size natural) {
    naturalWidth = static_cast<float>(natural.width);
    naturalHeight = static_cast<float>(natural.height);
    if (fitWidth != 0 || fitHeight != 0) return;
    fitWidth = natural.width;
    fitHeight = natural.height;
    SetSize(natural);
}

void Image::SetTint(const ColorRGBA& color) {
    tint = color;
    Invalidate();
}

void Image::SetTile(float countX, float countY) {
    tileX = countX;
    tileY = countY;
    Invalidate();
}

bool Image::IsTiled() const {
    return tileX > 0.0F && tileY > 0.0F && !(tileX == 1.0F && tileY == 1.0F);
}

void Image::Draw() {
    UpdateClipRect();
    DrawBackground();
    if (gui && gui->GetTarget() && image.GetBitmap()) DrawImage(*gui->GetTarget());
    DrawChildren();
}

void Image::DrawImage(Platform::DrawTarget& target) const {
    const Platform::Bitmap& bitmap = *image.GetBitmap();
    const float effective = GetEffectiveOpacity();
    RectF rect = Platform::ToRectF(GetAbsoluteRect());
    if (IsTiled()) {
        rect.right = rect.left + naturalWidth * tileX;
        rect.bottom = rect.top + naturalHeight * tileY;
    }
    if (!IsZero(tint)) {
        Platform::Brush* brush = gui->GetSolidColorBrush(tint);
        if (!brush) return;
        brush->SetOpacity(effective * tint.alpha);
        target.FillOpacityMask(bitmap, rect, *brush);
    } else if (IsTiled()) {
        target.TileBitmap(bitmap, rect, effective);
    } else {
        target.DrawBitmap(bitmap, rect, effective);
    }
}

void Image::CreateDeviceObjects() {
    image.CreateBitmap(gui);
    Window::CreateDeviceObjects();
}

void Image::ReleaseDeviceObjects() {
    image.ReleaseBitmap();
    Window::ReleaseDeviceObjects();
}

void Image::Reset() {
    image.Set(gui, nullptr);
    tileX = tileY = 1.0F;
    fitWidth = fitHeight = 0;
    naturalWidth = naturalHeight = 0.0F;
    tint = {};
    Window::Reset();
}

}  // namespace DirectGL
