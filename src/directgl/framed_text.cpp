#include "directgl/framed_text.h"

#include <algorithm>

namespace DirectGL {

namespace {

constexpr wchar_t Ellipsis = L'\u2026';
/// The part of the way back to the start that each update takes.
constexpr float ReturnShare = 0.3F;
constexpr float ReturnEnd = 0.5F;

}  // namespace

FramedText::FramedText(Gui* itsGui) : FrameWindow(itsGui) {
    label = Create<Text>();
    label->DisableMouse();
    label->SetHorizontalAlignment(HorizontalAlignment::Left);
}

void FramedText::SetFullText(const std::wstring& text) {
    fullText = text;
    Relayout();
}

void FramedText::SetLabelFontSize(std::uint32_t size) {
    labelFontSize = size;
    if (label) label->SetFontSize(size);
    Relayout();
}

void FramedText::SetLabelColor(const ColorRGBA& color) {
    if (label) label->SetTextColor(color);
}

void FramedText::SetEllipsis(bool value) {
    ellipsis = value;
    Relayout();
}

void FramedText::SetMarquee(bool value) {
    marquee = value;
    Relayout();
}

void FramedText::SetSize(int newWidth, int newHeight) {
    FrameWindow::SetSize(newWidth, newHeight);
    Relayout();
}

int FramedText::WidthOf(const std::wstring& text) {
    label->SetText(text, true);
    return label->GetWidth();
}

std::wstring FramedText::CutToFit() {
    std::size_t low = 0;
    std::size_t high = fullText.size();
    while (low < high) {
        const std::size_t middle = (low + 1 + high) / 2;
        if (WidthOf(fullText.substr(0, middle) + Ellipsis) > limitWidth)
            high = middle - 1;
        else
            low = middle;
    }
    return fullText.substr(0, low) + Ellipsis;
}

void FramedText::Relayout() {
    if (!label) return;
    limitWidth = width;
    // An empty text stands where a full one would.
    label->SetText(fullText.empty() ? L" " : fullText, true);
    int labelHeight = label->GetHeight();
    if (labelHeight < 1) labelHeight = static_cast<int>(labelFontSize) + 4;
    labelY = std::max(0, (height - labelHeight) / 2);

    const int full = WidthOf(fullText);
    shownText = fullText;
    scrollDistance = 0.0F;
    if (limitWidth >= 1 && full > limitWidth) {
        if (ellipsis) shownText = CutToFit();
        const int end = ellipsis ? WidthOf(shownText) : limitWidth;
        if (marquee) scrollDistance = static_cast<float>(full - end);
    }
    showingFull = false;
    label->SetText(shownText, true);
    ShowLabelAt(0.0F);
}

void FramedText::ShowLabelAt(float scrolled) {
    scrollNow = scrolled;
    if (label) label->SetPosition(-static_cast<int>(scrolled), labelY);
    Invalidate();
}

void FramedText::OnMouseEnter() {
    hovered = true;
    FrameWindow::OnMouseEnter();
}

void FramedText::OnMouseLeave() {
    hovered = false;
    FrameWindow::OnMouseLeave();
}

void FramedText::Update(double time) {
    FrameWindow::Update(time);
    if (!label) return;
    if (scrollDistance <= 0.0F || !marquee) {
        if (std::exchange(showingFull, false)) label->SetText(shownText, true);
        if (scrollNow != 0.0F) ShowLabelAt(0.0F);
        return;
    }
    if (!hovered) {
        ScrollBack();
        return;
    }
    if (!std::exchange(showingFull, true)) label->SetText(fullText, true);
    if (scrollNow < scrollDistance) ShowLabelAt(std::min(scrollNow + scrollSpeed, scrollDistance));
}

void FramedText::ScrollBack() {
    if (scrollNow > ReturnEnd) {
        ShowLabelAt(scrollNow - scrollNow * ReturnShare);
    } else if (std::exchange(showingFull, false)) {
        label->SetText(shownText, true);
        ShowLabelAt(0.0F);
    }
}

void FramedText::ChildReleased(Window* child) {
    if (child == label) label = nullptr;
}

void FramedText::Reset() {
    fullText.clear();
    shownText.clear();
    hovered = false;
    FrameWindow::Reset();
}

}  // namespace DirectGL
