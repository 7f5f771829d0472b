#pragma once

#include <d2d1.h>
#include <d3d10_1.h>
#include <memory>

#include "platform/drawing.h"
#include "platform/win32/gui/com.h"
#include "platform/window.h"

/// What Direct2D draws on: the front end of it, and the way of a frame to the screen.
namespace Platform::Win32 {

class Surface {
public:
    virtual ~Surface() = default;

    virtual ID2D1RenderTarget* GetTarget() = 0;
    virtual Size GetSize() const = 0;
    /// Within the frame, after its last drawing.
    [[nodiscard]] virtual GraphicsResult Present(const Presentation&) { return GraphicsOk; }
    /// Empty where pixels cannot be had.
    virtual Image ReadPixels() { return {}; }
};

/// Pixels in a texture, which nobody sees.
class TextureSurface : public Surface {
public:
    static Created<TextureSurface> Make(ID2D1Factory* factory, Size size, DeviceKind device);

    ID2D1RenderTarget* GetTarget() override { return target_.Get(); }
    Size GetSize() const override { return size_; }
    Image ReadPixels() override;

protected:
    TextureSurface() = default;
    GraphicsResult Create(ID2D1Factory* factory, Size size, DeviceKind device);

private:
    GraphicsResult CreateTexture(const D3D10_TEXTURE2D_DESC& description,
                                 Com<ID3D10Texture2D>& texture);

    // The order in which they are made; they go in the opposite one.
    Size size_;
    Com<ID3D10Device1> device_;
    Com<ID3D10Texture2D> texture_;
    Com<IDXGISurface> surface_;
    Com<ID2D1RenderTarget> target_;
};

/// A texture whose alpha shapes the window.
class LayeredSurface final : public TextureSurface {
public:
    static Created<LayeredSurface> Make(ID2D1Factory* factory, Size size, DeviceKind device,
                                        HWND window);

    GraphicsResult Present(const Presentation& presentation) override;

private:
    explicit LayeredSurface(HWND window) : window_(window) {}

    HWND window_;
    Com<ID2D1GdiInteropRenderTarget> interop_;
};

/// The client area of an opaque window.
class ClientSurface final : public Surface {
public:
    static Created<ClientSurface> Make(ID2D1Factory* factory, Size size, HWND window);

    ID2D1RenderTarget* GetTarget() override { return target_.Get(); }
    Size GetSize() const override { return size_; }

private:
    explicit ClientSurface(Size size) : size_(size) {}

    Size size_;
    Com<ID2D1HwndRenderTarget> target_;
};

}  // namespace Platform::Win32
