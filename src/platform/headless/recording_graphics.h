#pragma once

#include <atomic>

#include "platform/desktop.h"
#include "platform/headless/recording_text.h"

namespace Platform {

/// Images in a format of its own, so that no codec library is needed: what EncodePng writes,
/// Decode reads, and nothing else. Scaling takes the nearest pixel.
class RecordingCodec final : public ImageCodec {
public:
    std::optional<Size> ReadSize(std::span<const std::byte> encoded) override;
    std::optional<Image> Decode(std::span<const std::byte> encoded) override;
    std::optional<Image> Scale(const Image& image, Size size) override;
    std::vector<std::byte> EncodePng(const Image& image) override;
};

/// Makes recording targets and keeps the books over them: what was drawn, what still lives, and
/// what shall fail.
class RecordingGraphics final : public Graphics {
public:
    TextEngine& GetTextEngine() override { return text; }
    PrivateFonts& GetPrivateFonts() override { return fonts; }
    ImageCodec& GetImageCodec() override { return codec; }
    Created<DrawTarget> CreateOffscreenTarget(Size size) override;

    RecordingTextEngine text;
    RecordingFonts fonts;
    RecordingCodec codec;

    /// The calls of the last ended frame, one line each: the call's name, its numbers and its
    /// colour with the opacity that goes onto it, for instance
    /// "FillRectangle 0,0,20,10 #ff0000ff*0.5".
    std::vector<std::string> calls;
    int framesBegun = 0;
    Presentation lastPresentation;
    /// Targets, brushes, bitmaps and arcs that exist.
    int liveTargets = 0;
    int liveObjects = 0;
    /// A device object outlived its target, a clip was not popped, or the like.
    std::vector<std::string> violations;

    // Faults.
    std::atomic<int> failFrames = 0;   ///< so many EndFrame calls fail
    std::atomic<int> failObjects = 0;  ///< so many Create calls fail

    /// Off for measurements: nothing is noted down or painted.
    bool recording = true;
};

}  // namespace Platform
