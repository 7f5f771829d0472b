#pragma once

#include <functional>
#include <string>

#include "directgl/text.h"

namespace DirectGL {

/// A field for one line of text. It is edited where the caret stands, while it has the focus.
/// "**" has no meaning here.
class Input : public Text {
public:
    static constexpr WindowType Type = WindowType::Input;
    using CharacterFilter = std::function<bool(wchar_t)>;

    explicit Input(Gui* itsGui);

    /// Clamped to the text.
    void SetCaret(int index);
    int GetCaret() const { return caret; }
    bool IsCaretVisible() const { return caretVisible; }
    /// Shown while the field is empty and has no focus.
    void SetPlaceholder(const std::wstring& value);
    /// Shows an asterisk for each character and lets nothing be copied.
    void SetPassword(bool value);
    /// Decides which characters may be typed and pasted; an empty one takes all.
    void SetCharacterFilter(CharacterFilter filter) { characterFilter = std::move(filter); }
    void Copy();
    void Paste();
    void DeleteSelection();

    void Draw() override;
    void OnMouseUp() override;
    void OnMouseDown() override;
    void OnMouseMove() override;
    void OnMouseEnter() override;
    void OnMouseLeave() override;
    void OnBlur() override;
    void OnKeyDown(const KeyEvent& event) override;
    void Focus() override;
    void Update(double time) override;
    void SelectAll() override;
    void RefreshMeasure() override;
    void Reset() override;

protected:
    const MarkedText& GetShownText() const override;

private:
    void StartBlinking();
    bool Accepts(wchar_t character) const;
    void HandleKey(const KeyEvent& event);
    /// True when the key was a command.
    bool HandleShortcut(int key);
    void Insert(const std::wstring& characters);
    void Erase(int from, int to);
    void MoveCaret(int index, bool select);
    int NextIndex(int index) const;
    int PreviousIndex(int index) const;
    void AfterEdit();
    void DrawCaret();
    bool ShowsPlaceholder() const;
    float GetScrollGoal();
    void SetScrollExact(float value);

    CharacterFilter characterFilter;
    int caret = 0;
    bool caretVisible = true;
    bool password = false;
    std::wstring placeholder;
    float scrollExact = 0.0F;
    bool hoveredInput = false;
};

}  // namespace DirectGL
