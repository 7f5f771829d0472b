#pragma once

#include "platform/desktop.h"
#include "platform/host/gui/pango_engine.h"
#include "platform/host/gui/png_codec.h"

namespace Platform::Host {

class CairoGraphics final : public Graphics {
public:
    TextEngine& GetTextEngine() override { return engine_; }
    PrivateFonts& GetPrivateFonts() override { return engine_; }
    ImageCodec& GetImageCodec() override { return codec_; }
    Created<DrawTarget> CreateOffscreenTarget(Size size) override;

private:
    PangoEngine engine_;
    PngCodec codec_;
};

}  // namespace Platform::Host
