#include "platform/win32/gui/directwrite_layout.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Platform::Win32 {

namespace {

DWRITE_TEXT_METRICS MetricsOf(IDWriteTextLayout* layout) {
    DWRITE_TEXT_METRICS metrics{};
    // Without an answer everything counts as empty.
    if (FAILED(layout->GetMetrics(&metrics))) return {};
    return metrics;
}

/// Both lists have the same way of being asked: once for the count, once for the content.
std::vector<DWRITE_CLUSTER_METRICS> ClustersOf(IDWriteTextLayout* layout) {
    UINT32 count = 0;
    layout->GetClusterMetrics(nullptr, 0, &count);
    std::vector<DWRITE_CLUSTER_METRICS> clusters(count);
    if (FAILED(layout->GetClusterMetrics(clusters.data(), count, &count))) return {};
    return clusters;
}

std::vector<DWRITE_LINE_METRICS> LinesOf(IDWriteTextLayout* layout) {
    UINT32 count = 0;
    layout->GetLineMetrics(nullptr, 0, &count);
    std::vector<DWRITE_LINE_METRICS> lines(count);
    if (FAILED(layout->GetLineMetrics(lines.data(), count, &count))) return {};
    return lines;
}

/// Where a line of this width begins; blanks at its end do not count.
float LineStart(IDWriteTextLayout* layout, float width) {
    const float free = layout->GetMaxWidth() - width;
    switch (layout->GetTextAlignment()) {
        case DWRITE_TEXT_ALIGNMENT_CENTER:
            return free / 2.0F;
        case DWRITE_TEXT_ALIGNMENT_TRAILING:
            return free;
        default:
            return 0.0F;
    }
}

/// Not the second half of a character, and no accent over the one before.
bool IsCaretStop(wchar_t unit) {
    return !IS_LOW_SURROGATE(unit) && (unit < 0x300 || unit > 0x36F);
}

}  // namespace

void DirectWriteFormat::SetTextAlignment(TextAlignment alignment) {
    constexpr DWRITE_TEXT_ALIGNMENT Native[]{
        DWRITE_TEXT_ALIGNMENT_LEADING, DWRITE_TEXT_ALIGNMENT_CENTER, DWRITE_TEXT_ALIGNMENT_TRAILING,
        DWRITE_TEXT_ALIGNMENT_JUSTIFIED};
    format_->SetTextAlignment(Native[static_cast<std::size_t>(alignment)]);
}

void DirectWriteFormat::SetParagraphAlignment(ParagraphAlignment alignment) {
    constexpr DWRITE_PARAGRAPH_ALIGNMENT Native[]{DWRITE_PARAGRAPH_ALIGNMENT_NEAR,
                                                  DWRITE_PARAGRAPH_ALIGNMENT_CENTER,
                                                  DWRITE_PARAGRAPH_ALIGNMENT_FAR};
    format_->SetParagraphAlignment(Native[static_cast<std::size_t>(alignment)]);
}

void DirectWriteFormat::SetWordWrapping(bool wrap) {
    format_->SetWordWrapping(wrap ? DWRITE_WORD_WRAPPING_WRAP : DWRITE_WORD_WRAPPING_NO_WRAP);
}

TextMetrics DirectWriteLayout::GetMetrics() const {
    const DWRITE_TEXT_METRICS metrics = MetricsOf(layout_.Get());
    return {metrics.widthIncludingTrailingWhitespace, metrics.height};
}

/// Letters that a font builds from parts may come in one cluster with their neighbours.
void DirectWriteLayout::AddCluster(std::vector<CaretPlace>& carets, std::size_t count,
                                   CaretPlace first, float width) const {
    const std::wstring_view letters = std::wstring_view(text_).substr(carets.size(), count);
    const auto stops = std::ranges::count_if(letters, IsCaretStop);
    const float step = width / static_cast<float>(std::max<std::ptrdiff_t>(stops, 1));
    CaretPlace place = first;
    for (std::size_t at = 0; at < letters.size(); ++at) {
        if (at > 0 && IsCaretStop(letters[at])) place.x += step;
        carets.push_back(place);
    }
}

std::vector<CaretPlace> DirectWriteLayout::FindCarets() const {
    const std::size_t length = text_.size();
    const auto clusters = ClustersOf(layout_.Get());
    std::vector<CaretPlace> carets;
    carets.reserve(length + 1);
    auto cluster = clusters.begin();
    float top = MetricsOf(layout_.Get()).top;
    CaretPlace next{LineStart(layout_.Get(), 0.0F), top, 0.0F};
    for (const DWRITE_LINE_METRICS& line : LinesOf(layout_.Get())) {
        const std::size_t end = std::min(carets.size() + line.length, length);
        const std::size_t inked = end - std::min<std::size_t>(end, line.trailingWhitespaceLength);
        float width = 0.0F;
        std::size_t at = carets.size();
        for (auto part = cluster; part != clusters.end() && at < inked; at += part++->length)
            width += part->width;
        next = {LineStart(layout_.Get(), width), top, line.height};
        for (; cluster != clusters.end() && carets.size() < end; ++cluster) {
            // A line break takes no room.
            const float taken = cluster->isNewline ? 0.0F : cluster->width;
            AddCluster(carets, cluster->length, next, taken);
            next.x += taken;
        }
        top += line.height;
        // Behind a line break that ends the text stands the start of an empty line.
        if (line.newlineLength > 0) next = {LineStart(layout_.Get(), 0.0F), top, line.height};
    }
    carets.resize(length, next);
    carets.push_back(next);
    return carets;
}

CaretPlace DirectWriteLayout::GetCaret(std::size_t index) const {
    return FindCarets()[std::min(index, text_.size())];
}

std::size_t DirectWriteLayout::HitTest(PointF point) const {
    const std::vector<CaretPlace> carets = FindCarets();
    const auto lineDistance = [&](const CaretPlace& caret) {
        return std::max({0.0F, caret.top - point.y, point.y - caret.top - caret.height});
    };
    const float line = lineDistance(*std::ranges::min_element(carets, {}, lineDistance));
    const auto distance = [&](const CaretPlace& caret) {
        return lineDistance(caret) > line ? std::numeric_limits<float>::infinity()
                                          : std::abs(caret.x - point.x);
    };
    const auto nearest = std::ranges::min_element(carets, {}, distance);
    return static_cast<std::size_t>(nearest - carets.begin());
}

}  // namespace Platform::Win32
