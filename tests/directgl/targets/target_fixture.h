#pragma once

#include <array>
#include <cmath>
#include <gtest/gtest.h>

#include "directgl/gui.h"
#include "directgl/log.h"
#include "platform/headless/headless_desktop.h"
#include "platform/headless/held_clock.h"
#include "platform/headless/recording_graphics.h"
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

inline std::unique_ptr<Platform::Graphics> OpenRecordingGraphics() {
    return std::make_unique<Platform::RecordingGraphics>();
}

inline constexpr TargetKind RecordingKind{"Recording", &OpenRecordingGraphics};

/// The recording target of the tests, and the one that this build shows to people.
inline const auto AllTargets =
    testing::Values(RecordingKind, TargetKind{"Adapter", &Platform::OpenGraphics});

/// A Gui whose frames are read back, on one thread: events go in at the window, pixels come out.
/// The ground is clear and the drawing real, in each of the kinds.
class TargetTest : public testing::TestWithParam<TargetKind> {
protected:
    static constexpr int Width = 200;
    static constexpr int Height = 100;

    TargetTest() {
        SetLogSink([](std::string_view) {});
        gui.SetUps(60);
        EXPECT_TRUE(gui.Create({.title = L"", .width = Width, .height = Height}));
        // Text needs no fonts of the system.
        for (const std::uint16_t font : {201, 202})
            EXPECT_TRUE(gui.GetPrivateFonts().Register(Platform::FindOwnResource(font), L"Inter"));
        gui.GetPrivateFonts().Build();
        gui.SetLayered();
        layer = gui.AddLayer("UI");
        gui.PumpEvents();
    }

    ~TargetTest() override {
        gui.Clear();
        SetLogSink({});
    }

    Platform::HeadlessWindow& Native() { return *desktop.Window(); }
    void Pump() { gui.PumpEvents(); }
    void Tick(int count = 1) {
        for (int i = 0; i < count; ++i) {
            clock.Advance(1.0 / 60.0);
            gui.UpdatePass();
        }
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
        const std::array expected{color.blue, color.green, color.red, 1.0F};
        const std::array found = At(x, y);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const float wanted = expected[i] * color.alpha * 255.0F;
            if (std::abs(static_cast<float>(found[i]) - wanted) <= static_cast<float>(tolerance))
                continue;
            return testing::AssertionFailure()
                   << "at " << x << "," << y << " stands (blue, green, red, alpha) " << found[0]
                   << " " << found[1] << " " << found[2] << " " << found[3] << ", expected "
                   << color.blue * color.alpha * 255 << " " << color.green * color.alpha * 255
                   << " " << color.red * color.alpha * 255 << " " << color.alpha * 255;
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

    template <class T>
    static T* Place(T* widget, int x, int y, int width, int height) {
        widget->SetPosition(x, y);
        widget->SetSize(width, height);
        return widget;
    }
    template <class T>
    T* Make(int x, int y, int width, int height) {
        return Place(layer->Create<T>(), x, y, width, height);
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

    std::unique_ptr<Platform::Graphics> graphics = GetParam().open();
    Platform::HeldClock clock;
    Platform::HeadlessDesktop desktop{*graphics, clock};
    Gui gui{desktop};
    Layer* layer = nullptr;
    Platform::Image shot;
};

inline constexpr ColorRGBA Red{1.0F, 0.0F, 0.0F, 1.0F};
inline constexpr ColorRGBA Green{0.0F, 1.0F, 0.0F, 1.0F};
inline constexpr ColorRGBA Blue{0.0F, 0.0F, 1.0F, 1.0F};
inline constexpr ColorRGBA White{1.0F, 1.0F, 1.0F, 1.0F};

constexpr ColorRGBA Faded(ColorRGBA color, float alpha) {
    color.alpha *= alpha;
    return color;
}

}  // namespace DirectGL
