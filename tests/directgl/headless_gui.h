#pragma once

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "directgl/gui.h"
#include "directgl/log.h"
#include "platform/headless/headless_desktop.h"
#include "platform/headless/held_clock.h"
#include "platform/headless/recording_graphics.h"

namespace DirectGL {

inline constexpr ColorRGBA Red{1.0F, 0.0F, 0.0F, 1.0F};
inline constexpr ColorRGBA Green{0.0F, 1.0F, 0.0F, 1.0F};
inline constexpr ColorRGBA Blue{0.0F, 0.0F, 1.0F, 1.0F};
inline constexpr ColorRGBA White{1.0F, 1.0F, 1.0F, 1.0F};

template <class T>
T* Place(T* widget, int x, int y, int width, int height) {
    widget->SetPosition(x, y);
    widget->SetSize(width, height);
    return widget;
}

inline std::unique_ptr<Platform::Graphics> OpenRecordingGraphics() {
    return std::make_unique<Platform::RecordingGraphics>();
}

/// A Gui over a window nobody sees, with one layer, on one thread: events go in at the window, and
/// a Tick is one pass of the updating thread, which does not run here. At its end nothing that the
/// target made may be left.
class HeadlessGui {
protected:
    static constexpr int Width = 200;
    static constexpr int Height = 100;

    explicit HeadlessGui(std::unique_ptr<Platform::Graphics> drawing)
        : graphics(std::move(drawing)) {
        SetLogSink([this](std::string_view line) { log.emplace_back(line); });
        gui.SetUps(60);
        EXPECT_TRUE(gui.Create({.title = L"", .width = Width, .height = Height}));
        Pump();
    }

    ~HeadlessGui() {
        clock.Release();
        gui.Clear();
        if (books) {
            EXPECT_EQ(books->liveObjects, 0);
            EXPECT_EQ(books->liveTargets, 0);
            EXPECT_EQ(books->violations, std::vector<std::string>{});
        }
        SetLogSink({});
    }

    Platform::HeadlessWindow& Native() { return *desktop.Window(); }
    void Pump() { gui.PumpEvents(); }

    /// Updates as a thread at 60 a second would.
    void Tick(int count = 1) {
        for (int i = 0; i < count; ++i) {
            clock.Advance(1.0 / 60.0);
            gui.UpdatePass();
        }
    }

    template <class T>
    T* Make(int x, int y, int width, int height) {
        return Place(layer->Create<T>(), x, y, width, height);
    }

    std::unique_ptr<Platform::Graphics> graphics;
    /// What the recording target notes down, and the faults that it plays; null over another one.
    Platform::RecordingGraphics* books = dynamic_cast<Platform::RecordingGraphics*>(graphics.get());
    Platform::HeldClock clock;
    Platform::HeadlessDesktop desktop{*graphics, clock};
    std::vector<std::string> log;
    Gui gui{desktop};
    Layer* layer = gui.AddLayer("UI");
};

}  // namespace DirectGL
