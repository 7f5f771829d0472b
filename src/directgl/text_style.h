#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "directgl/bold_marks.h"
#include "directgl/types.h"
#include "platform/text_layout.h"

namespace DirectGL {

class Gui;

enum class HorizontalAlignment : std::uint8_t { Center = 0, Left = 1, Right = 2, Justified = 3 };
enum class VerticalAlignment : std::uint8_t { Center = 0, Top = 1, Bottom = 2 };

/// How a text looks, so that one text can take the look of another.
struct TextStyle {
    std::wstring font = L"Calibri";
    std::uint32_t fontSize = 12;     ///< pixels
    std::uint32_t fontWeight = 400;  ///< 700 is bold
    std::uint32_t fontStyle = 0;     ///< 0 upright, 1 oblique, 2 italic
    std::uint32_t fontStretch = 5;   ///< 5 is normal
    std::wstring locale;
    ColorRGBA textColor{1.0F, 1.0F, 1.0F, 1.0F};
    ColorRGBA selectionColor{0.2F, 0.2F, 1.0F, 0.75F};
    HorizontalAlignment hAlign = HorizontalAlignment::Center;
    VerticalAlignment vAlign = VerticalAlignment::Center;
    bool wordWrap = false;
    bool underline = false;
};

namespace Utilities {

/// The format for the style, with its alignments and wrapping; null, with a line in the log, when
/// the system cannot make it.
std::unique_ptr<Platform::TextFormat> GetTextFormat(const Gui& gui, const TextStyle& style);
/// Gives the format the style's alignments and wrapping.
void ApplyAlignment(Platform::TextFormat& format, const TextStyle& style);

/// Whole pixels that the text takes on one line per line break, trailing blanks included. Nothing
/// for a null format, an empty text and after a failure.
Size MeasureText(const Platform::TextFormat* format, const MarkedText& text,
                 Platform::TextEngine& engine);

}  // namespace Utilities

}  // namespace DirectGL
