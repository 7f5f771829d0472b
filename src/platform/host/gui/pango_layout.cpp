#include "platform/host/gui/pango_layout.h"

#include <algorithm>
#include <cmath>

#include "platform/text.h"

namespace Platform::Host {

namespace {

float Pixels(int pangoUnits) {
    return static_cast<float>(pangoUnits) / PANGO_SCALE;
}

/// The text as Pango takes it, with the place of each character in it.
std::string EncodeText(std::wstring_view text, std::vector<int>& byteOffsets) {
    std::string encoded;
    byteOffsets.reserve(text.size() + 1);
    for (const wchar_t character : text) {
        byteOffsets.push_back(static_cast<int>(encoded.size()));
        // A zero would end the text for Pango.
        encoded += character == 0 ? " " : Utf8FromWide({&character, 1});
    }
    byteOffsets.push_back(static_cast<int>(encoded.size()));
    return encoded;
}

void AddAttribute(PangoAttrList* list, PangoAttribute* attribute, int start, int end) {
    attribute->start_index = static_cast<guint>(start);
    attribute->end_index = static_cast<guint>(end);
    pango_attr_list_insert(list, attribute);
}

PangoAttributes MakeAttributes(const PangoTextFormat& format, const TextLayoutSpec& spec,
                               const std::vector<int>& byteOffsets) {
    PangoAttributes list(pango_attr_list_new());
    const std::size_t length = byteOffsets.size() - 1;
    for (const TextRange& range : spec.bold) {
        const std::size_t start = std::min(range.start, length);
        const std::size_t end = std::min(start + range.length, length);
        AddAttribute(list.get(), pango_attr_weight_new(PANGO_WEIGHT_BOLD), byteOffsets[start],
                     byteOffsets[end]);
    }
    if (spec.underline) {
        AddAttribute(list.get(), pango_attr_underline_new(PANGO_UNDERLINE_SINGLE), 0,
                     byteOffsets.back());
    }
    if (!format.Locale().empty()) {
        AddAttribute(list.get(),
                     pango_attr_language_new(pango_language_from_string(format.Locale().c_str())),
                     0, byteOffsets.back());
    }
    return list;
}

void ApplyAlignment(PangoLayout* layout, const PangoTextFormat& format) {
    switch (format.GetTextAlignment()) {
        case TextAlignment::Center:
            return pango_layout_set_alignment(layout, PANGO_ALIGN_CENTER);
        case TextAlignment::Trailing:
            return pango_layout_set_alignment(layout, PANGO_ALIGN_RIGHT);
        case TextAlignment::Justified:
            return pango_layout_set_justify(layout, TRUE);
        case TextAlignment::Leading:
            return;
    }
}

/// Pango places lines within its own width only when it wraps; a layout that does not is placed as
/// a whole, and is as wide as its widest line.
PointF FindOffset(PangoLayout* layout, const PangoTextFormat& format, const TextLayoutSpec& spec) {
    int width = 0;
    int height = 0;
    pango_layout_get_size(layout, &width, &height);
    PointF offset;
    if (!format.Wraps()) {
        const float free = spec.maxWidth - Pixels(width);
        if (format.GetTextAlignment() == TextAlignment::Center) offset.x = free / 2.0F;
        if (format.GetTextAlignment() == TextAlignment::Trailing) offset.x = free;
    }
    const float free = spec.maxHeight - Pixels(height);
    if (format.GetParagraphAlignment() == ParagraphAlignment::Center) offset.y = free / 2.0F;
    if (format.GetParagraphAlignment() == ParagraphAlignment::Far) offset.y = free;
    // Whole pixels keep the glyphs as even as their hints make them.
    return {std::floor(offset.x), std::floor(offset.y)};
}

}  // namespace

PangoText::PangoText(GObjectOwner<PangoLayout> layout, PointF offset)
    : layout_(std::move(layout)), offset_(offset) {
    PangoRectangle ink;
    pango_layout_get_pixel_extents(layout_.get(), &ink, nullptr);
    // Smoothing may reach a pixel further.
    ink_ = {offset.x + static_cast<float>(ink.x - 1), offset.y + static_cast<float>(ink.y - 1),
            offset.x + static_cast<float>(ink.x + ink.width + 1),
            offset.y + static_cast<float>(ink.y + ink.height + 1)};
}

void PangoText::Paint(cairo_t* context, PointF origin) const {
    cairo_move_to(context, origin.x + offset_.x, origin.y + offset_.y);
    pango_cairo_show_layout(context, layout_.get());
    cairo_new_path(context);
}

PangoTextLayout::PangoTextLayout(std::shared_ptr<const PangoText> text,
                                 std::vector<int> byteOffsets)
    : text_(std::move(text)), byteOffsets_(std::move(byteOffsets)) {}

std::unique_ptr<PangoTextLayout> PangoTextLayout::Make(PangoContext* context,
                                                       const PangoTextFormat& format,
                                                       const TextLayoutSpec& spec) {
    GObjectOwner<PangoLayout> layout(pango_layout_new(context));
    if (!layout) return nullptr;
    std::vector<int> byteOffsets;
    const std::string encoded = EncodeText(spec.text, byteOffsets);
    pango_layout_set_text(layout.get(), encoded.data(), static_cast<int>(encoded.size()));
    pango_layout_set_font_description(layout.get(), format.Description());
    if (format.Wraps()) {
        const double limited = std::clamp(static_cast<double>(spec.maxWidth), 0.0, 1'000'000.0);
        pango_layout_set_width(layout.get(), pango_units_from_double(limited));
        pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    }
    pango_layout_set_attributes(layout.get(), MakeAttributes(format, spec, byteOffsets).get());
    ApplyAlignment(layout.get(), format);
    const PointF offset = FindOffset(layout.get(), format, spec);
    auto text = std::make_shared<const PangoText>(std::move(layout), offset);
    return std::unique_ptr<PangoTextLayout>(
        new PangoTextLayout(std::move(text), std::move(byteOffsets)));
}

TextMetrics PangoTextLayout::GetMetrics() const {
    PangoRectangle logical;
    pango_layout_get_extents(text_->Layout(), nullptr, &logical);
    return {Pixels(logical.width), Pixels(logical.height)};
}

CaretPlace PangoTextLayout::GetCaret(std::size_t index) const {
    PangoRectangle strong;
    const int offset = byteOffsets_[std::min(index, byteOffsets_.size() - 1)];
    pango_layout_get_cursor_pos(text_->Layout(), offset, &strong, nullptr);
    return {text_->Offset().x + Pixels(strong.x), text_->Offset().y + Pixels(strong.y),
            Pixels(strong.height)};
}

std::size_t PangoTextLayout::HitTest(PointF point) const {
    const auto units = [](float pixels) { return static_cast<int>(pixels * PANGO_SCALE); };
    int offset = 0;
    int trailing = 0;
    pango_layout_xy_to_index(text_->Layout(), units(point.x - text_->Offset().x),
                             units(point.y - text_->Offset().y), &offset, &trailing);
    const auto character = std::ranges::lower_bound(byteOffsets_, offset);
    const auto index = static_cast<std::size_t>(character - byteOffsets_.begin());
    return std::min(index + static_cast<std::size_t>(trailing), byteOffsets_.size() - 1);
}

}  // namespace Platform::Host
