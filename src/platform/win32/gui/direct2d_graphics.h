#pragma once

#include "platform/desktop.h"
#include "platform/win32/gui/directwrite_engine.h"
#include "platform/win32/gui/surface.h"
#include "platform/win32/gui/wic_codec.h"

namespace Platform::Win32 {

class Direct2DGraphics final : public Graphics {
public:
    Direct2DGraphics();

    TextEngine& GetTextEngine() override { return engine_; }
    PrivateFonts& GetPrivateFonts() override { return engine_; }
    ImageCodec& GetImageCodec() override { return codec_; }
    Created<DrawTarget> CreateOffscreenTarget(Size size) override;

    /// Any thread.
    /// The radius is that of the window's region.
    Created<DrawTarget> CreateLayeredTarget(Size size, DeviceKind device, HWND window,
                                            float cornerRadius);
    Created<DrawTarget> CreateClientTarget(Size size, HWND window);

private:
    template <class AnySurface>
    Created<DrawTarget> MakeTarget(Created<AnySurface> surface, float cornerRadius = 0.0F);

    WicCodec codec_;
    DirectWriteEngine engine_;
    Com<ID2D1Factory> factory_;
};

}  // namespace Platform::Win32
