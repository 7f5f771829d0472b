#pragma once

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "directgl/gui.h"
#include "directgl/log.h"
#include "platform/headless/headless_desktop.h"
#include "platform/headless/held_clock.h"
#include "platform/headless/recording_graphics.h"

namespace DirectGL {

/// A Gui over a window nobody sees, with one layer, on one thread: events go in at the window, a
/// Frame and a Tick are one pass of the threads that do not run here.
class GuiTest : public testing::Test {
protected:
    static constexpr int Width = 200;
    static constexpr int Height = 100;

    GuiTest() {
        SetLogSink([this](std::string_view line) { log.emplace_back(line); });
        gui.SetUps(60);
        EXPECT_TRUE(gui.Create({.title = L"", .x = 30, .y = 40, .width = Width, .height = Height}));
        layer = gui.AddLayer("UI");
        Pump();
    }

    ~GuiTest() override {
        clock.Release();
        gui.Clear();
        EXPECT_EQ(graphics.liveObjects, 0);
        EXPECT_EQ(graphics.liveTargets, 0);
        EXPECT_EQ(graphics.violations, std::vector<std::string>{});
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

    /// Draws and hands out what was drawn; empty when no frame was due.
    std::vector<std::string> Frame() {
        graphics.calls.clear();
        gui.RenderPass();
        return graphics.calls;
    }

    /// The first drawn call that begins so, without its name; empty when there is none.
    std::string Drawn(const std::string& call) {
        gui.MarkDirty();
        for (const std::string& line : Frame())
            if (line.starts_with(call + " ")) return line.substr(call.size() + 1);
        return {};
    }

    Window* MakeBox(int x, int y, int width, int height, const std::wstring& name = {}) {
        return Place(layer->Create<Window>(name), x, y, width, height);
    }

    template <class T>
    static T* Place(T* widget, int x, int y, int width, int height) {
        widget->SetPosition(x, y);
        widget->SetSize(width, height);
        return widget;
    }

    /// Notes the name down each time it runs.
    WidgetCallback Note(const std::string& name) {
        return [this, name](Window*) {
            notes.push_back(name);
            return WidgetEventRet::Keep;
        };
    }

    using Notes = std::vector<std::string>;
    Notes TakeNotes() { return std::exchange(notes, {}); }

    Platform::RecordingGraphics graphics;
    Platform::HeldClock clock;
    Platform::HeadlessDesktop desktop{graphics, clock};
    Gui gui{desktop};
    Layer* layer = nullptr;
    Notes notes;
    std::vector<std::string> log;
};

inline constexpr ColorRGBA Red{1.0F, 0.0F, 0.0F, 1.0F};
inline constexpr ColorRGBA Green{0.0F, 1.0F, 0.0F, 1.0F};
inline constexpr ColorRGBA Blue{0.0F, 0.0F, 1.0F, 1.0F};

}  // namespace DirectGL
