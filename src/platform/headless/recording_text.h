#pragma once

#include <vector>

#include "platform/fonts.h"
#include "platform/text_layout.h"

namespace Platform {

/// Text of equal cells: a character is half the font size wide (rounded), one pixel more when it is
/// bold, and a line 1.25 of it high, so that a test can tell every position beforehand.
class RecordingTextEngine final : public TextEngine {
public:
    Created<TextFormat> CreateTextFormat(const TextFormatSpec& spec) override;
    Created<TextLayout> CreateTextLayout(const TextFormat& format,
                                         const TextLayoutSpec& spec) override;

    int layoutsMade = 0;
    /// While set, creation fails.
    bool failFormats = false;
    bool failLayouts = false;
};

class RecordingTextFormat final : public TextFormat {
public:
    explicit RecordingTextFormat(const TextFormatSpec& made) : spec(made) {}
    void SetTextAlignment(TextAlignment value) override { textAlignment = value; }
    void SetParagraphAlignment(ParagraphAlignment value) override { paragraphAlignment = value; }
    void SetWordWrapping(bool value) override { wrap = value; }

    TextFormatSpec spec;
    TextAlignment textAlignment = TextAlignment::Leading;
    ParagraphAlignment paragraphAlignment = ParagraphAlignment::Near;
    bool wrap = false;
};

class RecordingTextLayout final : public TextLayout {
public:
    RecordingTextLayout(const RecordingTextFormat& format, const TextLayoutSpec& spec);

    TextMetrics GetMetrics() const override { return metrics_; }
    CaretPlace GetCaret(std::size_t index) const override;
    std::size_t HitTest(PointF point) const override;

    /// A character's box; a line break has no width.
    struct Cell {
        RectF box;
        wchar_t character = 0;
    };
    /// Relative to the layout's origin.
    const std::vector<Cell>& Cells() const { return cells_; }
    const std::wstring& Text() const { return text_; }
    const std::vector<TextRange>& Bold() const { return bold_; }

private:
    struct Line {
        std::size_t first = 0;
        std::size_t end = 0;
        float width = 0.0F;
    };
    float CellWidth(std::size_t index) const;
    std::vector<Line> BreakLines(bool wrap, float maxWidth) const;

    std::wstring text_;
    std::vector<TextRange> bold_;
    float size_;
    bool boldFormat_;
    std::vector<Cell> cells_;
    TextMetrics metrics_;
    CaretPlace start_;  ///< of an empty text
};

class RecordingFonts final : public PrivateFonts {
public:
    GraphicsResult AddFile(std::span<const std::byte>) override { return GraphicsOk; }
    GraphicsResult BuildCollection() override { return GraphicsOk; }
};

}  // namespace Platform
