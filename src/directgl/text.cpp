#include "directgl/text.h"

#include <algorithm>
#include <cmath>

#include "directgl/gui.h"
#include "directgl/log.h"

namespace DirectGL {

namespace {

constexpr Size RulerBox{5000, 5000};
constexpr float WrappedHeightLimit = 100000.0F;

}  // namespace

void Text::SetText(const std::wstring& value, bool fitBox) {
    text = value;
    RefreshMeasure();
    if (fitBox) SetSize(measured.width, measured.height);
    RunTextChanged();
    Invalidate();
}

const MarkedText& Text::GetShownText() const {
    if (markedText != text) {
        shown = ReadBoldMarks(text);
        markedText = text;
    }
    return shown;
}

bool Text::EnsureFormat() {
    if (!format && gui) format = Utilities::GetTextFormat(*gui, look);
    return format != nullptr;
}

void Text::DropLayouts() {
    drawn.layout.reset();
    ruler.layout.reset();
}

void Text::RebuildFormat() {
    format.reset();
    DropLayouts();
    measured = {};
    RefreshMeasure();
    Invalidate();
}

void Text::ChangeAlignment() {
    if (format) Utilities::ApplyAlignment(*format, look);
    DropLayouts();
    Invalidate();
}

void Text::SetFont(const std::wstring& family) {
    look.font = family;
    RebuildFormat();
}

void Text::SetFontSize(std::uint32_t size) {
    look.fontSize = size;
    RebuildFormat();
}

void Text::SetFontWeight(std::uint32_t weight) {
    look.fontWeight = weight;
    RebuildFormat();
}

void Text::SetFontStyle(std::uint32_t fontStyle) {
    look.fontStyle = fontStyle;
    RebuildFormat();
}

void Text::SetFontStretch(std::uint32_t stretch) {
    look.fontStretch = stretch;
    RebuildFormat();
}

void Text::SetLocale(const std::wstring& locale) {
    look.locale = locale;
    RebuildFormat();
}

void Text::SetTextColor(const ColorRGBA& color) {
    look.textColor = color;
    Invalidate();
}

void Text::SetSelectionColor(const ColorRGBA& color) {
    look.selectionColor = color;
    Invalidate();
}

void Text::SetUnderline(bool underline) {
    look.underline = underline;
    Invalidate();
}

void Text::SetHorizontalAlignment(HorizontalAlignment alignment) {
    look.hAlign = alignment;
    ChangeAlignment();
}

void Text::SetVerticalAlignment(VerticalAlignment alignment) {
    look.vAlign = alignment;
    ChangeAlignment();
}

void Text::SetWordWrap(bool wrap) {
    look.wordWrap = wrap;
    ChangeAlignment();
}

void Text::SetTextStyle(const TextStyle& itsLook) {
    look = itsLook;
    RebuildFormat();
}

void Text::RefreshMeasure() {
    const MarkedText& words = GetShownText();
    // Pages give the same words over and over.
    if (measured.height != 0 && measuredText == words) return;
    measured = {};
    if (!EnsureFormat()) return;
    measured = Utilities::MeasureText(format.get(), words, gui->GetTextEngine());
    measuredText = words;
}

int Text::GetWrappedHeight(int wrapWidth) {
    const MarkedText& words = GetShownText();
    if (words.plain.empty() || !EnsureFormat()) return 0;
    format->SetWordWrapping(true);
    const auto made = gui->GetTextEngine().CreateTextLayout(
        *format, {.text = words.plain,
                  .maxWidth = static_cast<float>(std::max(1, wrapWidth)),
                  .maxHeight = WrappedHeightLimit,
                  .bold = words.bold});
    format->SetWordWrapping(look.wordWrap);
    if (!made) {
        LogFailure("DirectGL::Text::GetWrappedHeight", __LINE__, made.result);
        return 0;
    }
    return static_cast<int>(std::ceil(made.object->GetMetrics().height));
}

Platform::TextLayout* Text::GetLayout(KeptLayout& kept, const char* function, Size box) {
    const MarkedText& words = GetShownText();
    if (kept.layout && kept.box == box && kept.underline == look.underline && kept.text == words)
        return kept.layout.get();
    kept.layout.reset();
    if (!EnsureFormat()) return nullptr;
    auto made =
        gui->GetTextEngine().CreateTextLayout(*format, {.text = words.plain,
                                                        .maxWidth = static_cast<float>(box.width),
                                                        .maxHeight = static_cast<float>(box.height),
                                                        .underline = look.underline,
                                                        .bold = words.bold});
    if (!made) {
        LogFailure(function, __LINE__, made.result);
        return nullptr;
    }
    kept = {words, box, look.underline, std::move(made.object)};
    return kept.layout.get();
}

void Text::Draw() {
    UpdateClipRect();
    DrawBackground();
    if (selectable) DrawSelection();
    DrawShownText(look.textColor);
    DrawChildren();
}

void Text::DrawShownText(const ColorRGBA& color) {
    if (!gui || !gui->GetTarget() || GetLength() == 0) return;
    const Platform::TextLayout* layout =
        GetLayout(drawn, "DirectGL::Text::DrawTextW", {std::max(1, width), std::max(1, height)});
    Platform::Brush* brush = gui->GetSolidColorBrush(color);
    if (!layout || !brush) return;
    brush->SetOpacity(color.alpha * GetEffectiveOpacity());
    const Point position = GetAbsolutePosition();
    gui->GetTarget()->DrawTextLayout(
        {static_cast<float>(position.x - scrollOffset), static_cast<float>(position.y)}, *layout,
        *brush);
}

void Text::DrawSelection() {
    if (!HasSelection() || !gui || !gui->GetTarget()) return;
    Platform::Brush* brush = gui->GetSolidColorBrush(look.selectionColor);
    if (!brush) return;
    brush->SetOpacity(look.selectionColor.alpha * GetEffectiveOpacity());
    const auto [low, high] = GetSelectionRange();
    const Rect rect = GetAbsoluteRect();
    gui->GetTarget()->FillRectangle(
        {XOf(low), static_cast<float>(rect.top), XOf(high), static_cast<float>(rect.bottom)},
        *brush);
}

int Text::PrefixWidth(int index) {
    if (!gui || index <= 0) return 0;
    const Platform::TextLayout* layout =
        GetLayout(ruler, "DirectGL::Utilities::MeasureText", RulerBox);
    if (!layout) return 0;
    const float start = layout->GetCaret(0).x;
    const float end = layout->GetCaret(static_cast<std::size_t>(index)).x;
    return static_cast<int>(std::ceil(end - start));
}

int Text::GetAlignmentOffset() const {
    const int free = width - measured.width;
    if (!gui || free <= 0 || measured.width == 0) return 0;
    if (look.hAlign == HorizontalAlignment::Center) return free / 2;
    return look.hAlign == HorizontalAlignment::Right ? free : 0;
}

float Text::XOf(int index) {
    return static_cast<float>(GetAbsolutePosition().x + GetAlignmentOffset() + PrefixWidth(index) -
                              scrollOffset);
}

int Text::IndexUnderPointer() {
    const int place = GetMouse().x + scrollOffset - GetAbsolutePosition().x - GetAlignmentOffset();
    if (place <= 0) return 0;
    const int length = GetLength();
    // The first index of each place: those behind it stand within a character of several units.
    int before = 0;
    int beforeIndex = 0;
    for (int index = 1; index <= length; ++index) {
        const int reached = PrefixWidth(index);
        if (reached >= place) return reached - place < place - before ? index : beforeIndex;
        if (reached == before) continue;
        before = reached;
        beforeIndex = index;
    }
    return length;
}

std::pair<int, int> Text::GetSelectionRange() const {
    const int length = GetLength();
    const int first = std::clamp(selectionStart, 0, length);
    const int second = std::clamp(selectionEnd, 0, length);
    return std::minmax({first, second});
}

std::wstring Text::GetSelectedText() const {
    if (!HasSelection()) return {};
    const auto [low, high] = GetSelectionRange();
    return GetShownText().plain.substr(static_cast<std::size_t>(low),
                                       static_cast<std::size_t>(high - low));
}

void Text::SelectAll() {
    selectionStart = 0;
    selectionEnd = GetLength();
    Invalidate();
}

void Text::OnMouseDown() {
    if (selectable) {
        selecting = true;
        selectionStart = selectionEnd = IndexUnderPointer();
        Invalidate();
    }
    Window::OnMouseDown();
}

void Text::OnMouseMove() {
    if (selectable && selecting) {
        selectionEnd = IndexUnderPointer();
        Invalidate();
    }
    Window::OnMouseMove();
}

void Text::OnMouseUp() {
    if (selectable) {
        selecting = false;
        if (!HasSelection()) ClearSelection();
        Invalidate();
    }
    Window::OnMouseUp();
}

void Text::OnPressCancelled() {
    selecting = false;
    Window::OnPressCancelled();
}

void Text::CreateDeviceObjects() {
    EnsureFormat();
    Window::CreateDeviceObjects();
}

void Text::Reset() {
    text.clear();
    look = {};
    format.reset();
    DropLayouts();
    textChanged.Clear();
    ClearSelection();
    selecting = selectable = false;
    measured = {};
    scrollOffset = 0;
    Window::Reset();
}

}  // namespace DirectGL
