#include "directgl/text_style.h"

#include <array>
#include <cmath>

#include "directgl/gui.h"
#include "directgl/log.h"

namespace DirectGL::Utilities {

namespace {

/// The box of a measurement, larger than any text that is shown.
constexpr float MeasureExtent = 5000.0F;

constexpr std::array TextAlignments{
    Platform::TextAlignment::Center, Platform::TextAlignment::Leading,
    Platform::TextAlignment::Trailing, Platform::TextAlignment::Justified};
constexpr std::array ParagraphAlignments{Platform::ParagraphAlignment::Center,
                                         Platform::ParagraphAlignment::Near,
                                         Platform::ParagraphAlignment::Far};

}  // namespace

std::unique_ptr<Platform::TextFormat> GetTextFormat(const Gui& gui, const TextStyle& style) {
    auto made = gui.GetTextEngine().CreateTextFormat({
        .family = style.font,
        .privateFamily = gui.GetPrivateFonts().Holds(style.font),
        .size = static_cast<float>(style.fontSize),
        .weight = style.fontWeight,
        .style = style.fontStyle,
        .stretch = style.fontStretch,
        .locale = style.locale,
    });
    if (!made) {
        Log("%s : Fail use of CreateTextFormat! Res %u ", "DirectGL::Utilities::GetTextFormat",
            made.result);
        return nullptr;
    }
    ApplyAlignment(*made.object, style);
    return std::move(made.object);
}

void ApplyAlignment(Platform::TextFormat& format, const TextStyle& style) {
    format.SetTextAlignment(TextAlignments[static_cast<std::size_t>(style.hAlign)]);
    format.SetParagraphAlignment(ParagraphAlignments[static_cast<std::size_t>(style.vAlign)]);
    format.SetWordWrapping(style.wordWrap);
}

Size MeasureText(const Platform::TextFormat* format, const MarkedText& text,
                 Platform::TextEngine& engine) {
    if (!format || text.plain.empty()) return {};
    const auto made = engine.CreateTextLayout(*format, {.text = text.plain,
                                                        .maxWidth = MeasureExtent,
                                                        .maxHeight = MeasureExtent,
                                                        .bold = text.bold});
    if (!made) {
        LogFailure("DirectGL::Utilities::MeasureText", __LINE__, made.result);
        return {};
    }
    const Platform::TextMetrics metrics = made.object->GetMetrics();
    return {static_cast<int>(std::ceil(metrics.width)),
            static_cast<int>(std::ceil(metrics.height))};
}

}  // namespace DirectGL::Utilities
