#pragma once

#include <string>

#include "directgl/frame_window.h"
#include "directgl/text.h"

namespace DirectGL {

/// A box for a text that may be too long for it: the text is cut with an ellipsis, and scrolls to
/// its end while the pointer is over the box.
class FramedText : public FrameWindow {
public:
    static constexpr WindowType Type = WindowType::FramedText;

    explicit FramedText(Gui* itsGui);

    void SetFullText(const std::wstring& text);
    const std::wstring& GetFullText() const { return fullText; }
    /// What fits into the box.
    const std::wstring& GetShownText() const { return shownText; }
    void SetLabelFontSize(std::uint32_t size);
    void SetLabelColor(const ColorRGBA& color);
    /// Off, a long text is clipped at the edge instead.
    void SetEllipsis(bool value);
    /// Off, the text stands still under the pointer.
    void SetMarquee(bool value);
    /// Pixels per update.
    void SetScrollSpeed(float speed) { scrollSpeed = speed; }
    /// The text within, for its look; call Relayout after changing how wide it is.
    Text* GetLabel() const { return label; }
    void Relayout();

    using FrameWindow::SetSize;
    void SetSize(int newWidth, int newHeight) override;
    void OnMouseEnter() override;
    void OnMouseLeave() override;
    void Update(double time) override;
    void Reset() override;

protected:
    void ChildReleased(Window* child) override;

private:
    int WidthOf(const std::wstring& text);
    std::wstring CutToFit();
    void ShowLabelAt(float scrolled);
    void ScrollBack();

    Text* label = nullptr;
    std::wstring fullText;
    std::wstring shownText;
    int limitWidth = 0;
    std::uint32_t labelFontSize = 12;
    int labelY = 0;
    bool hovered = false;
    bool showingFull = false;
    bool ellipsis = true;
    bool marquee = true;
    float scrollNow = 0.0F;
    float scrollDistance = 0.0F;
    float scrollSpeed = 1.1F;
};

}  // namespace DirectGL
