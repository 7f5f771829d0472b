#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/created.h"
#include "platform/geometry.h"

/// Text that is measured and laid out. Formats and layouts do not depend on a drawing target and
/// live through its loss. They may be used by any thread, one at a time.
namespace Platform {

enum class TextAlignment : std::uint8_t { Leading, Center, Trailing, Justified };
enum class ParagraphAlignment : std::uint8_t { Near, Center, Far };

struct TextFormatSpec {
    std::wstring family;
    bool privateFamily = false;  ///< from the program's own collection, else from the system's
    float size = 12.0F;          ///< pixels
    std::uint32_t weight = 400;  ///< 100 to 950
    std::uint32_t style = 0;     ///< 0 upright, 1 oblique, 2 italic
    std::uint32_t stretch = 5;   ///< 1 ultra-condensed to 9 ultra-expanded, 5 normal
    std::wstring locale;
};

/// A face with the way its text is set. An unknown family falls back to one of the system's.
class TextFormat {
public:
    virtual ~TextFormat() = default;

    virtual void SetTextAlignment(TextAlignment alignment) = 0;
    virtual void SetParagraphAlignment(ParagraphAlignment alignment) = 0;
    /// Off by default: only line breaks in the text end a line.
    virtual void SetWordWrapping(bool wrap) = 0;
};

struct TextRange {
    std::size_t start = 0;
    std::size_t length = 0;
    bool operator==(const TextRange&) const = default;
};

struct TextLayoutSpec {
    std::wstring_view text;
    float maxWidth = 0.0F;   ///< what alignment and wrapping refer to; text may overflow it
    float maxHeight = 0.0F;  ///< what the paragraph alignment refers to
    bool underline = false;
    std::span<const TextRange> bold;  ///< set in weight 700 instead of the format's
};

struct TextMetrics {
    float width = 0.0F;  ///< of the widest line, trailing blanks included
    float height = 0.0F;
};

/// Where a caret stands, in pixels from the layout box's top-left corner.
struct CaretPlace {
    float x = 0.0F;
    float top = 0.0F;
    float height = 0.0F;
};

/// A text set once; it keeps its own copy of the text and does not follow later changes of the
/// format.
class TextLayout {
public:
    virtual ~TextLayout() = default;

    virtual TextMetrics GetMetrics() const = 0;
    /// Before the character at the index; the text's length gives the place behind the last one.
    /// A larger index counts as the length.
    virtual CaretPlace GetCaret(std::size_t index) const = 0;
    /// The index of the caret place that is nearest to the point; 0 for an empty text.
    virtual std::size_t HitTest(PointF point) const = 0;
};

class TextEngine {
public:
    virtual ~TextEngine() = default;

    virtual Created<TextFormat> CreateTextFormat(const TextFormatSpec& spec) = 0;
    /// The format has to come from this engine.
    virtual Created<TextLayout> CreateTextLayout(const TextFormat& format,
                                                 const TextLayoutSpec& spec) = 0;
};

}  // namespace Platform
