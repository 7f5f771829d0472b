#include "platform/headless/recording_text.h"

#include <algorithm>
#include <cmath>

namespace Platform {

Created<TextFormat> RecordingTextEngine::CreateTextFormat(const TextFormatSpec& spec) {
    if (failFormats) return GraphicsFailed;
    return std::make_unique<RecordingTextFormat>(spec);
}

Created<TextLayout> RecordingTextEngine::CreateTextLayout(const TextFormat& format,
                                                          const TextLayoutSpec& spec) {
    if (failLayouts) return GraphicsFailed;
    ++layoutsMade;
    return std::make_unique<RecordingTextLayout>(static_cast<const RecordingTextFormat&>(format),
                                                 spec);
}

RecordingTextLayout::RecordingTextLayout(const RecordingTextFormat& format,
                                         const TextLayoutSpec& spec)
    : text_(spec.text),
      bold_(spec.bold.begin(), spec.bold.end()),
      size_(format.spec.size),
      boldFormat_(format.spec.weight >= 600) {
    const std::vector<Line> lines = BreakLines(format.wrap, spec.maxWidth);
    const float lineHeight = std::round(size_ * 1.25F);
    const float height = lineHeight * static_cast<float>(lines.size());
    float y = 0.0F;
    if (format.paragraphAlignment == ParagraphAlignment::Center) y = (spec.maxHeight - height) / 2;
    if (format.paragraphAlignment == ParagraphAlignment::Far) y = spec.maxHeight - height;
    for (const Line& line : lines) {
        float x = 0.0F;
        if (format.textAlignment == TextAlignment::Center) x = (spec.maxWidth - line.width) / 2;
        if (format.textAlignment == TextAlignment::Trailing) x = spec.maxWidth - line.width;
        if (cells_.empty()) start_ = {x, y, lineHeight};
        for (std::size_t i = line.first; i < line.end; ++i) {
            const float width = CellWidth(i);
            cells_.push_back({{x, y, x + width, y + lineHeight}, text_[i]});
            x += width;
        }
        metrics_.width = std::max(metrics_.width, line.width);
        y += lineHeight;
    }
    metrics_.height = height;
}

float RecordingTextLayout::CellWidth(std::size_t index) const {
    if (text_[index] == L'\n') return 0.0F;
    const bool bold = boldFormat_ || std::ranges::any_of(bold_, [&](const TextRange& range) {
                          return index >= range.start && index < range.start + range.length;
                      });
    return std::round(size_ / 2.0F) + (bold ? 1.0F : 0.0F);
}

/// Ends a line behind each line break and, when wrapping, behind the last blank that fits, or
/// within a word that is wider than the box.
std::vector<RecordingTextLayout::Line> RecordingTextLayout::BreakLines(bool wrap,
                                                                       float maxWidth) const {
    std::vector<Line> lines(1);
    std::size_t lastBlank = 0;
    const auto startLine = [&](std::size_t at) {
        lines.back().end = at;
        lines.push_back({at, at, 0.0F});
        lastBlank = at;
    };
    for (std::size_t i = 0; i < text_.size(); ++i) {
        const float width = CellWidth(i);
        const bool blank = text_[i] == L' ';
        if (wrap && !blank && lines.back().width + width > maxWidth && i > lines.back().first) {
            startLine(lastBlank > lines.back().first ? lastBlank : i);
            Line& rest = lines.back();
            for (std::size_t k = rest.first; k < i; ++k)
                rest.width += CellWidth(k);
            Line& full = lines[lines.size() - 2];
            full.width = 0.0F;
            for (std::size_t k = full.first; k < full.end; ++k)
                full.width += CellWidth(k);
        }
        lines.back().width += width;
        if (blank) lastBlank = i + 1;
        if (text_[i] == L'\n') startLine(i + 1);
    }
    lines.back().end = text_.size();
    return lines;
}

CaretPlace RecordingTextLayout::GetCaret(std::size_t index) const {
    if (cells_.empty()) return start_;
    if (index < cells_.size()) {
        const RectF& box = cells_[index].box;
        return {box.left, box.top, box.Height()};
    }
    const RectF& last = cells_.back().box;
    return {last.right, last.top, last.Height()};
}

std::size_t RecordingTextLayout::HitTest(PointF point) const {
    std::size_t nearest = 0;
    float best = std::abs(point.x - GetCaret(0).x);
    for (std::size_t i = 1; i <= cells_.size(); ++i) {
        const float distance = std::abs(point.x - GetCaret(i).x);
        if (distance <= best) {
            best = distance;
            nearest = i;
        }
    }
    return nearest;
}

}  // namespace Platform
