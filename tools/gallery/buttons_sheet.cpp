#include "directgl/button.h"
#include "directgl/image.h"
#include "sheet.h"

namespace Gallery {

namespace {

using DirectGL::Button;

Button* MakeButton(DirectGL::Window* parent, int x, int y, int width, int height,
                   const std::wstring& words) {
    auto* button = Put<Button>(parent, x, y, width, height);
    button->SetColors(Rgb(0xC0392B), Rgb(0xE8603A), Rgb(0x7B1F1A));
    button->SetPill(true);
    auto* label = Label(button, 0, 0, words, 13, Rgb(0xFFFFFF), 700);
    label->SetSize(width, height);
    label->SetHorizontalAlignment(DirectGL::HorizontalAlignment::Center);
    button->SetTextColor(Rgb(0xFFF0DC));
    button->SetLabel(label);
    return button;
}

/// The rows of one kind: normal, and those that the script hovers, presses and the disabled one.
struct Row {
    Button* hovered;
    Button* pressed;
};

Row MakeRow(DirectGL::Window* root, int y, const std::wstring& caption,
            const std::function<void(Button*)>& dress) {
    Caption(root, 16, y, caption);
    Button* buttons[4]{};
    const wchar_t* const words[]{L"Normal", L"Hover", L"Press", L"Off"};
    for (int i = 0; i < 4; ++i) {
        buttons[i] = MakeButton(root, 16 + i * 84, y + 18, 76, 30, words[i]);
        dress(buttons[i]);
    }
    buttons[3]->SetEnabled(false);
    return {buttons[1], buttons[2]};
}

}  // namespace

Sheet ButtonsSheet() {
    return {"buttons", [](DirectGL::Window* root) {
                const DirectGL::Gui& gui = *root->GetGui();
                std::vector<Row> rows{
                    MakeRow(root, 12, L"Pill", [](Button*) {}),
                    MakeRow(root, 74, L"Square", [](Button* b) { b->SetPill(false); }),
                    MakeRow(root, 136, L"Corner radius and outline",
                            [](Button* b) {
                                b->SetCornerRadius(6);
                                b->SetColors(Rgb(0x22100B), Rgb(0x331913), Rgb(0x0D0504));
                                b->SetOutline(true, 2, Rgb(0xC9943A));
                            }),
                    MakeRow(root, 198, L"Gradient",
                            [](Button* b) {
                                b->SetGradient(Rgb(0x3B2A9E), Rgb(0x9E2A6E), Rgb(0x22100B));
                            }),
                    MakeRow(root, 260, L"Horizontal gradient, square",
                            [](Button* b) {
                                b->SetPill(false);
                                b->SetGradient(Rgb(0x3B2A9E), Rgb(0x9E2A6E), Rgb(0x22100B), true);
                            }),
                    MakeRow(root, 322, L"Images",
                            [&](Button* b) {
                                b->SetImages(Landscape(gui, 76, 30), nullptr, Landscape(gui, 20, 8),
                                             nullptr);
                            }),
                    MakeRow(root, 384, L"A child that shows only on hover",
                            [](Button* b) {
                                auto* line = b->Create<DirectGL::Window>();
                                line->SetPosition(12, 24);
                                line->SetSize(52, 2);
                                line->SetColor(Rgb(0xFFE2A8));
                                b->SetHoverChild(line);
                            }),
                };
                std::vector<Step> steps{{"still", [](Stage&) {}}};
                for (std::size_t i = 0; i < rows.size(); ++i) {
                    const Row row = rows[i];
                    const std::string number = std::to_string(i + 1);
                    steps.push_back(
                        {"hover-" + number, [row](Stage& stage) { stage.PointAt(row.hovered); }});
                    steps.push_back(
                        {"press-" + number, [row](Stage& stage) { stage.PressOn(row.pressed); }});
                    steps.push_back({"released-" + number,
                                     [row](Stage& stage) { stage.ReleaseOn(row.pressed); }});
                }
                return steps;
            }};
}

}  // namespace Gallery
