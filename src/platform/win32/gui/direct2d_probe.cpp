#include "platform/win32/gui/direct2d_probe.h"

namespace Platform::Win32 {

namespace {

constexpr float TileSize = 16.0F;
constexpr Color White{1.0F, 1.0F, 1.0F, 1.0F};

/// Tile by tile: an ellipse, half a circle about its middle, a clipped square, a masked square.
void DrawTiles(DrawTarget& target, Brush& brush, const Arc& arc, const Bitmap& mask) {
    const auto tile = [](float number) {
        return RectF{number * TileSize, 0.0F, (number + 1.0F) * TileSize, TileSize};
    };
    target.BeginFrame();
    target.Clear({});
    target.FillEllipse({8.0F, 8.0F}, 5.3F, 5.3F, brush);
    target.DrawArc(arc, {24.0F, 8.0F}, 0.0F, brush, 4.0F);
    target.PushRoundedClip(tile(2.0F), 8.0F);
    target.FillRectangle(tile(2.0F), brush);
    target.PopClip();
    target.FillOpacityMask(mask, tile(3.0F), brush);
}

bool ShowsAll(const Image& frame) {
    const auto alphaAt = [&](int x, int y) {
        const std::size_t at =
            static_cast<std::size_t>(y) * frame.Stride() + static_cast<std::size_t>(x) * 4;
        return std::to_integer<int>(frame.pixels[at + 3]);
    };
    bool soft = false;
    for (int x = 0; x < 16; ++x)
        soft = soft || (alphaAt(x, 8) > 16 && alphaAt(x, 8) < 240);
    const bool arc = alphaAt(24, 13) > 200;
    const bool roundEnd = alphaAt(28, 7) > 100;
    const bool clipped = alphaAt(32, 0) == 0 && alphaAt(40, 8) > 200;
    const bool masked = alphaAt(56, 8) > 200;
    return soft && arc && roundEnd && clipped && masked;
}

}  // namespace

bool PassesProbe(DrawTarget& target) {
    const auto brush = target.CreateSolidBrush(White);
    const auto arc = target.CreateArc(5.0F, 0.0F, 180.0F);
    const auto mask = target.CreateBitmap(
        Image{{1, 1}, {std::byte{255}, std::byte{255}, std::byte{255}, std::byte{255}}});
    if (!brush || !arc || !mask) return false;
    DrawTiles(target, *brush.object, *arc.object, *mask.object);
    if (target.EndFrame(nullptr) != GraphicsOk) return false;
    const Image frame = target.ReadFrame();
    return !frame.IsEmpty() && ShowsAll(frame);
}

}  // namespace Platform::Win32
