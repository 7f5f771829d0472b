#pragma once

#include <array>
#include <cmath>

#include "directgl/headless_gui.h"
#include "platform/resources.h"

namespace DirectGL {

/// What draws in a run of the tests.
struct TargetKind {
    const char* name;
    std::unique_ptr<Platform::Graphics> (*open)();
};

inline std::string NameOfKind(const testing::TestParamInfo<TargetKind>& kind) {
    return kind.param.name;
}

inline constexpr TargetKind RecordingKind{"Recording", &OpenRecordingGraphics};

/// The recording target of the tests, and the one that this build shows to people.
inline const auto AllTargets =
    testing::Values(RecordingKind, TargetKind{"Adapter", &Platform::OpenGraphics});

/// A headless Gui whose frames are read back: pixels come out. The ground is clear and the drawing
/// real, in each of the kinds.
class TargetTest : public testing::TestWithParam<TargetKind>, protected HeadlessGui {
protected:
    TargetTest() : HeadlessGui(GetParam().open()) {
        // Text needs no fonts of the system.
        for (const std::uint16_t font : {201, 202})
            EXPECT_TRUE(gui.GetPrivateFonts().Register(Platform::FindOwnResource(font), L"Inter"));
        gui.GetPrivateFonts().Build();
        gui.SetLayered();
    }

    /// Draws a frame and reads it.
    const Platform::Image& Shoot() {
        gui.MarkDirty();
        gui.RenderPass();
        shot = gui.GetTarget() ? gui.GetTarget()->ReadFrame() : Platform::Image{};
        return shot;
    }

    /// A pixel of the last shot: blue, green, red, alpha from 0 to 255, the alpha multiplied in.
    std::array<int, 4> At(int x, int y) const {
        const std::byte* pixel = shot.pixels.data() + static_cast<std::size_t>(y) * shot.Stride() +
                                 static_cast<std::size_t>(x) * 4;
        std::array<int, 4> parts{};
        for (std::size_t i = 0; i < parts.size(); ++i)
            parts[i] = std::to_integer<int>(pixel[i]);
        return parts;
    }

    /// The pixel is that colour over clear ground, within a few steps of rounding.
    testing::AssertionResult Shows(int x, int y, const ColorRGBA& color, int tolerance = 3) const {
        const float whole = color.alpha * 255.0F;
        const std::array wanted{color.blue * whole, color.green * whole, color.red * whole, whole};
        const std::array found = At(x, y);
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            if (std::abs(static_cast<float>(found[i]) - wanted[i]) > static_cast<float>(tolerance))
                return testing::AssertionFailure()
                       << "at " << x << "," << y << " stands (blue, green, red, alpha) "
                       << testing::PrintToString(found) << ", expected "
                       << testing::PrintToString(wanted);
        }
        return testing::AssertionSuccess();
    }
    testing::AssertionResult IsClear(int x, int y) const { return Shows(x, y, {}); }

    /// How many pixels of the rectangle are not clear.
    int CountPainted(const Rect& rect) const {
        int count = 0;
        for (int y = rect.top; y < rect.bottom; ++y)
            for (int x = rect.left; x < rect.right; ++x)
                if (At(x, y)[3] != 0) ++count;
        return count;
    }

    /// An encoded image whose pixels, row by row, have these colours.
    ImageHandle Encode(int width, const std::vector<ColorRGBA>& colors) {
        Platform::Image image{{width, static_cast<int>(colors.size()) / width}, {}};
        for (const ColorRGBA& color : colors)
            for (const float part : {color.blue, color.green, color.red, 1.0F})
                image.pixels.push_back(
                    static_cast<std::byte>(std::lround(part * color.alpha * 255.0F)));
        return Utilities::MakeResourceHandle(graphics->GetImageCodec().EncodePng(image));
    }

    /// What is no image.
    static ImageHandle Junk() {
        const std::vector<std::byte> bytes(100, std::byte{7});
        return Utilities::MakeResourceHandle(bytes);
    }

    Platform::Image shot;
};

constexpr ColorRGBA Faded(ColorRGBA color, float alpha) {
    color.alpha *= alpha;
    return color;
}

}  // namespace DirectGL
