#include "sheet.h"

#include <cmath>
#include <numbers>

namespace Gallery {

using DirectGL::ColorRGBA;
using DirectGL::ImageHandle;
using DirectGL::Text;
using DirectGL::Window;

const std::vector<Sheet>& AllSheets() {
    static const std::vector<Sheet> sheets{SurfacesSheet(), TextsSheet(),  ButtonsSheet(),
                                           ControlsSheet(), ImagesSheet(), ModalSheet()};
    return sheets;
}

DirectGL::Point Stage::MiddleOf(const Window* widget) {
    const DirectGL::Rect rect = widget->GetAbsoluteRect();
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

void Stage::Settle() {
    gui_.PumpEvents();
    Wait(0.1);
}

void Stage::PointAt(const Window* widget) {
    const DirectGL::Point middle = MiddleOf(widget);
    window_.PointerMove(middle.x, middle.y);
    Settle();
}

void Stage::PressOn(const Window* widget) {
    const DirectGL::Point middle = MiddleOf(widget);
    window_.PointerMove(middle.x, middle.y);
    window_.LeftDown(middle.x, middle.y);
    Settle();
}

void Stage::ReleaseOn(const Window* widget) {
    const DirectGL::Point middle = MiddleOf(widget);
    window_.LeftUp(middle.x, middle.y);
    Settle();
}

void Stage::Click(const Window* widget) {
    PressOn(widget);
    ReleaseOn(widget);
}

void Stage::Wait(double seconds) {
    gui_.PumpEvents();
    for (int ticks = static_cast<int>(std::lround(seconds * 60.0)); ticks > 0; --ticks) {
        clock_.Advance(1.0 / 60.0);
        gui_.UpdatePass();
    }
}

ColorRGBA Rgb(unsigned hex, float alpha) {
    const auto part = [hex](int shift) {
        return static_cast<float>((hex >> shift) & 0xFFU) / 255.0F;
    };
    return {part(16), part(8), part(0), alpha};
}

Text* Label(Window* parent, int x, int y, const std::wstring& text, unsigned size,
            const ColorRGBA& color, unsigned weight, const std::wstring& family) {
    Text* label = parent->Create<Text>();
    DirectGL::TextStyle style;
    style.font = family;
    style.fontSize = size;
    style.fontWeight = weight;
    style.textColor = color;
    style.hAlign = DirectGL::HorizontalAlignment::Left;
    label->SetTextStyle(style);
    label->SetText(text, true);
    label->SetPosition(x, y);
    label->DisableMouse();
    return label;
}

Text* Caption(Window* parent, int x, int y, const std::wstring& text) {
    return Label(parent, x, y, text, 10, Rgb(0x9A8478));
}

Window* Box(Window* parent, int x, int y, int width, int height, const DirectGL::WindowStyle& style,
            int radius) {
    auto* box = Put<Window>(parent, x, y, width, height);
    box->SetStyle(style);
    box->SetCornerRadius(radius);
    return box;
}

DirectGL::Input* Field(Window* parent, int x, int y, int width, int height) {
    constexpr int Padding = 8;
    Window* frame = Box(parent, x, y, width, height,
                        {.fill = Rgb(0x22100B), .border = Rgb(0x6A463C), .gradientEnd = {}}, 4);
    auto* field = Put<DirectGL::Input>(frame, Padding, 2, width - 2 * Padding, height - 4);
    DirectGL::TextStyle look = field->GetTextStyle();
    look.font = L"Inter";
    look.fontSize = 13;
    field->SetTextStyle(look);
    return field;
}

namespace {

ImageHandle Encode(const DirectGL::Gui& gui, int width, int height,
                   const std::function<ColorRGBA(float x, float y)>& colorAt) {
    Platform::Image image{{width, height}, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const ColorRGBA color =
                colorAt((static_cast<float>(x) + 0.5F) / static_cast<float>(width),
                        (static_cast<float>(y) + 0.5F) / static_cast<float>(height));
            for (const float part : {color.blue, color.green, color.red, 1.0F})
                image.pixels.push_back(
                    static_cast<std::byte>(std::lround(part * color.alpha * 255.0F)));
        }
    }
    return DirectGL::Utilities::MakeResourceHandle(
        gui.GetGraphics().GetImageCodec().EncodePng(image));
}

}  // namespace

ImageHandle Landscape(const DirectGL::Gui& gui, int width, int height) {
    return Encode(gui, width, height, [](float x, float y) {
        const float ridge = 0.55F + 0.12F * std::sin(x * 9.0F) + 0.05F * std::sin(x * 31.0F);
        const float hill = 0.78F + 0.06F * std::sin(x * 6.0F + 2.0F);
        if (std::hypot(x - 0.72F, (y - 0.25F) * 0.8F) < 0.09F) return Rgb(0xFFE2A8);
        if (y > hill) return Rgb(0x3B2A3F);
        if (y > ridge) return Rgb(0x6E4460);
        return ColorRGBA{0.95F - 0.35F * y, 0.55F - 0.2F * y, 0.42F + 0.3F * y, 1.0F};
    });
}

ImageHandle Star(const DirectGL::Gui& gui, int size, unsigned hex) {
    return Encode(gui, size, size, [=](float x, float y) {
        const float dx = x - 0.5F;
        const float dy = y - 0.53F;
        const float fifth = std::numbers::pi_v<float> / 2.5F;
        float turn = std::fmod(std::atan2(dx, -dy) + 5.0F * fifth, fifth);
        turn = std::min(turn, fifth - turn);
        // Straight edges between five outer and five inner corners.
        const float edge = 0.187F / std::cos(fifth / 2.0F - turn - 0.31F + 0.31F * turn / fifth);
        const float reach = edge + 0.3F * std::max(0.0F, 1.0F - turn / (fifth / 2.0F));
        const float soft = (reach - std::hypot(dx, dy)) * static_cast<float>(size);
        return Rgb(hex, std::min(1.0F, std::max(0.0F, soft)));
    });
}

}  // namespace Gallery
