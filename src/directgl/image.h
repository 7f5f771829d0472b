#pragma once

#include "directgl/image_resource.h"
#include "directgl/window.h"

namespace DirectGL {

/// Shows an image stretched over the widget, repeated over it, or as a mask in one colour.
class Image : public Window {
public:
    static constexpr WindowType Type = WindowType::Image;

    explicit Image(Gui* itsGui) : Window(itsGui) {}

    /// Keeps a copy of the encoded bytes. The first image gives the widget its size. Bytes that
    /// are no image show nothing; an empty buffer is ignored.
    void SetImageFromBuffer(const std::byte* bytes, std::size_t size);
    void SetImageFromHandle(const ImageHandle& handle);
    const ImageHandle& GetHandle() const { return image.GetHandle(); }
    /// Everything zero shows the image in its own colours.
    void SetTint(const ColorRGBA& color);
    const ColorRGBA& GetTint() const { return tint; }
    /// How often the image is repeated; 1 and 1 stretches it once over the widget.
    void SetTile(float countX, float countY);
    /// Pixels of the image; 0 without one.
    float GetNaturalWidth() const { return naturalWidth; }
    float GetNaturalHeight() const { return naturalHeight; }

    void Reset() override;
    void Draw() override;
    void CreateDeviceObjects() override;
    void ReleaseDeviceObjects() override;

private:
    bool IsTiled() const;
    void DrawImage(Platform::DrawTarget& target) const;
    void TakeNaturalSize(Size natural);

    float tileX = 1.0F;
    float tileY = 1.0F;
    int fitWidth = 0;  ///< the size that the first image gave the widget
    int fitHeight = 0;
    float naturalWidth = 0.0F;
    float naturalHeight = 0.0F;
    ColorRGBA tint;
    ImageResource image;
};

}  // namespace DirectGL
