#pragma once

#include <utility>

#include "directgl/headless_gui.h"

namespace DirectGL {

/// A headless Gui over the recording target, whose calls tell what was drawn.
class GuiTest : public testing::Test, protected HeadlessGui {
protected:
    GuiTest() : HeadlessGui(OpenRecordingGraphics()) {}

    /// Draws and hands out what was drawn; empty when no frame was due.
    std::vector<std::string> Frame() {
        books->calls.clear();
        gui.RenderPass();
        return books->calls;
    }

    /// The first drawn call that begins so, without its name; empty when there is none.
    std::string Drawn(const std::string& call) {
        gui.MarkDirty();
        for (const std::string& line : Frame())
            if (line.starts_with(call + " ")) return line.substr(call.size() + 1);
        return {};
    }

    Window* MakeBox(int x, int y, int width, int height) {
        return Make<Window>(x, y, width, height);
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

    Notes notes;
};

}  // namespace DirectGL
