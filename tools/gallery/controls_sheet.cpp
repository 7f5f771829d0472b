#include "directgl/input.h"
#include "directgl/scrollbar.h"
#include "directgl/toggle.h"
#include "sheet.h"

namespace Gallery {

namespace {

using DirectGL::Input;

Input* MakeInput(DirectGL::Window* root, int y) {
    return Field(root, 16, y, 240, 26);
}

}  // namespace

Sheet ControlsSheet() {
    return {"controls", [](DirectGL::Window* root) {
                Caption(root, 16, 12, L"Toggles: off, on, under way, with images");
                auto* off = Put<DirectGL::Toggle>(root, 16, 30, 44, 24);
                auto* on = Put<DirectGL::Toggle>(root, 80, 30, 44, 24);
                on->SetOn(true, false);
                auto* sliding = Put<DirectGL::Toggle>(root, 144, 30, 44, 24);
                auto* pictured = Put<DirectGL::Toggle>(root, 208, 30, 44, 24);
                const DirectGL::Gui& gui = *root->GetGui();
                pictured->SetImages(Landscape(gui, 44, 24), Star(gui, 44, 0x33B6FF),
                                    Star(gui, 20, 0xFFAB3D));

                Caption(root, 16, 70, L"Inputs: empty, typed, selected, long, password");
                Input* empty = MakeInput(root, 88);
                empty->SetPlaceholder(L"Your name");
                Input* typed = MakeInput(root, 122);
                Input* selected = MakeInput(root, 156);
                Input* longer = MakeInput(root, 190);
                Input* password = MakeInput(root, 224);
                password->SetPassword(true);

                Caption(root, 16, 266, L"Scrollbars: at the start, at the end, short, bare");
                auto* first = Put<DirectGL::Scrollbar>(root, 16, 284, 20, 140);
                auto* last = Put<DirectGL::Scrollbar>(root, 56, 284, 20, 140);
                last->SetThumbRatio(0.5F);
                last->SetValue(1.0F);
                auto* small = Put<DirectGL::Scrollbar>(root, 96, 284, 20, 60);
                small->SetThumbRatio(0.1F);
                auto* bare = Put<DirectGL::Scrollbar>(root, 136, 284, 8, 140);
                bare->SetArrowsVisible(false);
                bare->SetThumbRatio(0.3F);
                bare->SetValue(0.4F);

                return std::vector<Step>{
                    {"still", [](Stage&) {}},
                    {"toggling",
                     [=](Stage& stage) {
                         stage.Click(off);
                         stage.Wait(1.0);
                         stage.Click(sliding);
                         stage.Click(pictured);
                     }},
                    {"typing",
                     [=](Stage& stage) {
                         stage.Click(longer);
                         stage.Native().Type(L"A value that is much longer than its field is");
                         stage.Click(password);
                         stage.Native().Type(L"secret");
                         stage.Click(selected);
                         stage.Native().Type(L"These words are selected");
                         stage.Native().Press('A', Platform::ModifierControl);
                         stage.Wait(0.1);
                     }},
                    {"caret",
                     [=](Stage& stage) {
                         stage.Click(typed);
                         stage.Native().Type(L"Za\u017C\u00F3\u0142\u0107 ** g\u0119\u015Bl\u0105");
                         stage.Native().Press(Platform::KeyLeft);
                         stage.Native().Press(Platform::KeyLeft);
                         stage.Wait(0.1);
                     }},
                    {"scrolling", [=](Stage& stage) {
                         const DirectGL::Point thumb = Stage::MiddleOf(first->GetThumb());
                         stage.Native().LeftDown(thumb.x, thumb.y);
                         stage.Native().PointerMove(thumb.x, thumb.y + 30);
                         stage.Wait(0.1);
                     }}};
            }};
}

}  // namespace Gallery
