#pragma once

#include "platform/desktop.h"

namespace Gallery {

/// Graphics that draw everything but the texts, which they measure all the same: what differs
/// between a picture and its like without texts is text.
class TextlessGraphics final : public Platform::Graphics {
public:
    explicit TextlessGraphics(Platform::Graphics& graphics) : graphics_(graphics) {}

    Platform::TextEngine& GetTextEngine() override { return graphics_.GetTextEngine(); }
    Platform::PrivateFonts& GetPrivateFonts() override { return graphics_.GetPrivateFonts(); }
    Platform::ImageCodec& GetImageCodec() override { return graphics_.GetImageCodec(); }
    Platform::Created<Platform::DrawTarget> CreateOffscreenTarget(Platform::Size size) override;

private:
    Platform::Graphics& graphics_;
};

}  // namespace Gallery
