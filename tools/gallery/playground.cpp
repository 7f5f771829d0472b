#include "playground.h"

#include <array>
#include <sstream>

#include "directgl/image.h"
#include "platform/text.h"
#include "sheet.h"

namespace Gallery {

namespace {

using DirectGL::Button;
using DirectGL::WidgetEventRet;
using DirectGL::Window;

Button* MakeButton(Window* root, int x, int y, int width, const std::wstring& words) {
    auto* button = Put<Button>(root, x, y, width, 34);
    button->SetColors(Rgb(0xC0392B), Rgb(0xE8603A), Rgb(0x7B1F1A));
    button->SetPill(true);
    auto* label = Label(button, 0, 0, words, 13, Rgb(0xFFFFFF), 700);
    label->SetSize(width, 34);
    label->SetHorizontalAlignment(DirectGL::HorizontalAlignment::Center);
    button->SetLabel(label);
    return button;
}

const char* StateName(Button::State state) {
    constexpr std::array Names{"normal", "hover", "pressed"};
    return Names[static_cast<std::size_t>(state)];
}

}  // namespace

Playground::Playground(Window* root) {
    Label(root, 16, 14, L"Try them", 18, Rgb(0xF2E4DF), 700, L"Sora");
    MakeButtons(root);
    MakeFields(root);
    MakeDragArea(root);
    bar_ = Put<DirectGL::Scrollbar>(root, 324, 190, 20, 260);
    bar_->SetThumbRatio(0.3F);
    Caption(root, 16, 500, L"The arrow keys turn the pages, and the ground moves the window.");
    MakeModal(root);
}

void Playground::MakeButtons(Window* root) {
    press_ = MakeButton(root, 16, 52, 100, L"Press");
    press_->SetClicked([this](Window*) {
        ++clicks_;
        return WidgetEventRet::Keep;
    });
    press_->SetRightUp([this](Window*) {
        ++rightClicks_;
        return WidgetEventRet::Keep;
    });
    opener_ = MakeButton(root, 126, 52, 100, L"Modal");
    opener_->SetClicked([this](Window*) {
        modal_->Show();
        return WidgetEventRet::Keep;
    });
    minimizer_ = MakeButton(root, 236, 52, 60, L"_");
    minimizer_->SetClicked([](Window* widget) {
        widget->GetGui()->GetWindow()->Minimize();
        return WidgetEventRet::Keep;
    });
    toggle_ = Put<DirectGL::Toggle>(root, 300, 57, 44, 24);
}

void Playground::MakeFields(Window* root) {
    first_ = Field(root, 16, 102, 328, 28);
    first_->SetPlaceholder(L"Something to type");
    second_ = Field(root, 16, 142, 328, 28);
    second_->SetPlaceholder(L"Something to paste");
}

void Playground::MakeDragArea(Window* root) {
    area_ = Box(root, 16, 190, 296, 260,
                {.fill = Rgb(0x22100B), .border = Rgb(0x3E2119), .gradientEnd = {}}, 8);
    Caption(area_, 10, 8, L"Drag the square; turn the wheel");
    area_->SetWheel([this](Window* widget) {
        const DirectGL::WheelEvent& event = widget->GetWheelEvent();
        (event.down != 0 ? wheelDown_ : wheelUp_) += event.notches;
        wheelModifiers_ = event.modifiers;
        return WidgetEventRet::Keep;
    });
    auto* picture = area_->Create<DirectGL::Image>();
    picture->SetImageFromHandle(Landscape(*root->GetGui(), 276, 120));
    picture->SetPosition(10, 130);
    picture->DisableMouse();
    picture->SetPulse(0.5F, 1.0F, 3000.0F);
    knob_ = Box(area_, 20, 40, 40, 40,
                {.fill = Rgb(0xFFAB3D), .border = Rgb(0xFFAB3D), .gradientEnd = {}}, 6);
    knob_->SetDraggable(true);
}

void Playground::MakeModal(Window* root) {
    modal_ = Put<DirectGL::Modal>(root, 0, 0, Width, Height);
    modal_->SetDimColor(Rgb(0x0A0403, 0.8F));
    auto* panel = Box(modal_, 60, 200, 240, 120,
                      {.fill = Rgb(0x1A0A07), .border = Rgb(0xC9943A), .gradientEnd = {}}, 10);
    Label(panel, 20, 18, L"A press beside this closes it", 13, Rgb(0xF2E4DF));
    modal_->Hide();
    modal_->SetBackdropClicked([](Window* widget) {
        widget->Hide();
        return WidgetEventRet::Keep;
    });
}

std::string Playground::Describe() const {
    std::ostringstream told;
    told << "press=" << StateName(press_->GetState()) << "\nclicks=" << clicks_
         << "\nright-clicks=" << rightClicks_ << "\ntoggle=" << toggle_->IsOn()
         << "\nmodal=" << modal_->IsVisible() << "\nwheel-up=" << wheelUp_
         << "\nwheel-down=" << wheelDown_ << "\nwheel-modifiers=" << wheelModifiers_
         << "\nvalue=" << bar_->GetValue() << '\n';
    const auto field = [&](const char* name, const DirectGL::Input* input) {
        told << name << '=' << Platform::Utf8FromWide(input->GetText()) << '\n'
             << name << ".focus=" << input->IsFocused() << '\n'
             << name << ".caret=" << input->GetCaret() << '\n'
             << name << ".selected=" << Platform::Utf8FromWide(input->GetSelectedText()) << '\n';
    };
    field("first", first_);
    field("second", second_);
    const auto place = [&](const char* name, const Window* widget) {
        const DirectGL::Rect rect = widget->GetAbsoluteRect();
        told << name << ".place=" << rect.left << ',' << rect.top << ',' << rect.right << ','
             << rect.bottom << '\n';
    };
    place("press", press_);
    place("opener", opener_);
    place("minimizer", minimizer_);
    place("toggle", toggle_);
    place("first", first_);
    place("second", second_);
    place("bar", bar_);
    place("thumb", bar_->GetThumb());
    place("down", bar_->GetDownButton());
    place("area", area_);
    place("knob", knob_);
    return told.str();
}

}  // namespace Gallery
