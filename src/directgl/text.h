#pragma once

#include <memory>
#include <string>
#include <vector>

#include "directgl/text_style.h"
#include "directgl/window.h"

namespace DirectGL {

/// Shows one text, with a range of it selected. "**" in the text turns bold on and off and is not
/// shown; indices of characters count without it. The text does not wrap unless told to.
class Text : public Window {
public:
    static constexpr WindowType Type = WindowType::Text;
    static constexpr int NoIndex = -1;

    explicit Text(Gui* itsGui) : Window(itsGui) {}

    /// With fitBox the widget takes the size of the text.
    void SetText(const std::wstring& value, bool fitBox = false);
    const std::wstring& GetText() const { return text; }
    /// Of the whole text on one line per line break.
    int GetMeasuredWidth() const { return measured.width; }
    int GetMeasuredHeight() const { return measured.height; }
    /// The height of the text when it is wrapped to the width.
    int GetWrappedHeight(int wrapWidth);

    void SetFont(const std::wstring& family);
    void SetFontSize(std::uint32_t size);
    void SetFontWeight(std::uint32_t weight);
    void SetFontStyle(std::uint32_t fontStyle);
    void SetFontStretch(std::uint32_t stretch);
    void SetLocale(const std::wstring& locale);
    void SetTextColor(const ColorRGBA& color);
    void SetSelectionColor(const ColorRGBA& color);
    void SetUnderline(bool underline);
    void SetHorizontalAlignment(HorizontalAlignment alignment);
    void SetVerticalAlignment(VerticalAlignment alignment);
    void SetWordWrap(bool wrap);
    const TextStyle& GetTextStyle() const { return look; }
    /// Takes the look alone: text, selection and callbacks stay.
    void SetTextStyle(const TextStyle& itsLook);

    /// Lets the pointer select.
    void SetSelectable(bool value) { selectable = value; }
    virtual void SelectAll();
    std::wstring GetSelectedText() const;
    /// NoIndex without a selection; the start may lie behind the end.
    int GetSelectionStart() const { return selectionStart; }
    int GetSelectionEnd() const { return selectionEnd; }
    void SetTextChanged(WidgetCallback callback) { textChanged.Set(std::move(callback)); }
    int GetScrollOffset() const { return scrollOffset; }

    /// Measures the text anew.
    virtual void RefreshMeasure();
    virtual void DrawSelection();

    void Reset() override;
    void Draw() override;
    void OnMouseUp() override;
    void OnMouseDown() override;
    void OnMouseMove() override;
    void OnPressCancelled() override;
    void CreateDeviceObjects() override;

protected:
    /// What is shown for the text.
    virtual const MarkedText& GetShownText() const;
    /// The text itself, in the colour.
    void DrawShownText(const ColorRGBA& color);
    bool HasSelection() const {
        const auto [low, high] = GetSelectionRange();
        return low != high;
    }
    void ClearSelection() { selectionStart = selectionEnd = NoIndex; }
    /// The two indices in order and within the text.
    std::pair<int, int> GetSelectionRange() const;
    int GetLength() const { return static_cast<int>(GetShownText().plain.size()); }
    /// Pixels from the left of the text to the place before a character.
    int PrefixWidth(int index);
    /// Absolute x of the place before a character.
    float XOf(int index);
    int IndexUnderPointer();
    void RunTextChanged() { textChanged.Run(this); }

    std::wstring text;
    TextStyle look;
    CallbackSlot textChanged;
    int selectionStart = NoIndex;
    int selectionEnd = NoIndex;
    bool selecting = false;
    bool selectable = false;
    int scrollOffset = 0;  ///< pixels that the text is shifted to the left
    Size measured;
    mutable MarkedText shown;  ///< kept, since every frame asks for it

private:
    /// A layout with what it was made of.
    struct KeptLayout {
        MarkedText text;
        Size box;
        bool underline = false;
        std::unique_ptr<Platform::TextLayout> layout;
    };

    bool EnsureFormat();
    void RebuildFormat();
    void ChangeAlignment();
    void DropLayouts();
    Platform::TextLayout* GetLayout(KeptLayout& kept, const char* function, Size box);
    int GetAlignmentOffset() const;

    std::unique_ptr<Platform::TextFormat> format;
    MarkedText measuredText;          ///< what was measured last
    mutable std::wstring markedText;  ///< what shown was read from
    KeptLayout drawn;
    KeptLayout ruler;  ///< on one line, for the places of carets
};

}  // namespace DirectGL
