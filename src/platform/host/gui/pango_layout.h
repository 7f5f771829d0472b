#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/host/gui/cairo_owners.h"
#include "platform/text_layout.h"

namespace Platform::Host {

class PangoTextFormat final : public TextFormat {
public:
    explicit PangoTextFormat(PangoDescription description, std::string locale)
        : description_(std::move(description)), locale_(std::move(locale)) {}

    void SetTextAlignment(TextAlignment alignment) override { textAlignment_ = alignment; }
    void SetParagraphAlignment(ParagraphAlignment alignment) override {
        paragraphAlignment_ = alignment;
    }
    void SetWordWrapping(bool wrap) override { wrap_ = wrap; }

    const PangoFontDescription* Description() const { return description_.get(); }
    const std::string& Locale() const { return locale_; }
    TextAlignment GetTextAlignment() const { return textAlignment_; }
    ParagraphAlignment GetParagraphAlignment() const { return paragraphAlignment_; }
    bool Wraps() const { return wrap_; }

private:
    PangoDescription description_;
    std::string locale_;
    TextAlignment textAlignment_ = TextAlignment::Leading;
    ParagraphAlignment paragraphAlignment_ = ParagraphAlignment::Near;
    bool wrap_ = false;
};

/// A text that is laid out, shared with the frames that show it.
class PangoText {
public:
    PangoText(GObjectOwner<PangoLayout> layout, PointF offset);

    PangoLayout* Layout() const { return layout_.get(); }
    /// Where Pango's layout begins in the box.
    PointF Offset() const { return offset_; }
    /// Everything that is painted, from the box's top-left corner.
    RectF InkBounds() const { return ink_; }
    /// In the context's source colour.
    void Paint(cairo_t* context, PointF origin) const;

private:
    GObjectOwner<PangoLayout> layout_;
    PointF offset_;
    RectF ink_;
};

class PangoTextLayout final : public TextLayout {
public:
    /// Null when the text cannot be laid out.
    static std::unique_ptr<PangoTextLayout> Make(PangoContext* context,
                                                 const PangoTextFormat& format,
                                                 const TextLayoutSpec& spec);

    TextMetrics GetMetrics() const override;
    CaretPlace GetCaret(std::size_t index) const override;
    std::size_t HitTest(PointF point) const override;

    const std::shared_ptr<const PangoText>& GetText() const { return text_; }

private:
    PangoTextLayout(std::shared_ptr<const PangoText> text, std::vector<int> byteOffsets);

    std::shared_ptr<const PangoText> text_;
    std::vector<int> byteOffsets_;  ///< of each character in Pango's text, and of its end
};

}  // namespace Platform::Host
