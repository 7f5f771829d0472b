#pragma once

#include <dwrite.h>
#include <string>
#include <vector>

#include "platform/text_layout.h"
#include "platform/win32/gui/com.h"

namespace Platform::Win32 {

class DirectWriteFormat final : public TextFormat {
public:
    explicit DirectWriteFormat(Com<IDWriteTextFormat> format) : format_(std::move(format)) {}

    void SetTextAlignment(TextAlignment alignment) override;
    void SetParagraphAlignment(ParagraphAlignment alignment) override;
    void SetWordWrapping(bool wrap) override;
    IDWriteTextFormat* Get() const { return format_.Get(); }

private:
    Com<IDWriteTextFormat> format_;
};

class DirectWriteLayout final : public TextLayout {
public:
    DirectWriteLayout(Com<IDWriteTextLayout> layout, std::wstring_view text)
        : layout_(std::move(layout)), text_(text) {}

    TextMetrics GetMetrics() const override;
    CaretPlace GetCaret(std::size_t index) const override;
    std::size_t HitTest(PointF point) const override;
    IDWriteTextLayout* Get() const { return layout_.Get(); }

private:
    /// One for each index up to the length. They are summed up from the clusters: the system's own
    /// answers would do, but a Windows that is played by Wine has none.
    std::vector<CaretPlace> FindCarets() const;
    /// Appends the places of the next count characters, which share a cluster of that width.
    void AddCluster(std::vector<CaretPlace>& carets, std::size_t count, CaretPlace first,
                    float width) const;

    Com<IDWriteTextLayout> layout_;
    std::wstring text_;
};

}  // namespace Platform::Win32
