#include "directgl/input.h"

#include <algorithm>
#include <cmath>

#include "directgl/gui.h"

namespace DirectGL {

namespace {

constexpr double BlinkSeconds = 0.5;
constexpr ColorRGBA PlaceholderColor{0.65F, 0.65F, 0.65F, 1.0F};
constexpr wchar_t FirstPrintable = 32;
constexpr wchar_t DeleteCharacter = 127;
/// Room for the caret at the end of the text.
constexpr int CaretRoom = 2;
constexpr float LeastDrift = 2.0F;
constexpr float DriftTicks = 90.0F;
constexpr float ReturnShare = 0.3F;
constexpr float ReturnEnd = 0.5F;

/// The second half of a character that takes two units.
bool IsTrailingUnit(wchar_t unit) {
    return sizeof(wchar_t) == 2 && unit >= 0xDC00 && unit <= 0xDFFF;
}

}  // namespace

Input::Input(Gui* itsGui) : Text(itsGui) {
    selectable = true;
    look.hAlign = HorizontalAlignment::Left;
    StartBlinking();
}

void Input::StartBlinking() {
    AddTimer(BlinkSeconds, [this](Window*) {
        caretVisible = !caretVisible;
        if (focusedFlag) Invalidate();
        return WidgetEventRet::Keep;
    });
}

const MarkedText& Input::GetShownText() const {
    if (ShowsPlaceholder())
        shown.plain = placeholder;
    else if (password)
        shown.plain.assign(text.size(), L'*');
    else
        shown.plain = text;
    return shown;
}

bool Input::ShowsPlaceholder() const {
    return text.empty() && !focusedFlag && !placeholder.empty();
}

void Input::SetPlaceholder(const std::wstring& value) {
    placeholder = value;
    Invalidate();
}

void Input::SetPassword(bool value) {
    password = value;
    RefreshMeasure();
    Invalidate();
}

void Input::RefreshMeasure() {
    Text::RefreshMeasure();
    // A placeholder is shown, but it is not the text.
    if (text.empty()) measured = {};
    caret = std::clamp(caret, 0, static_cast<int>(text.size()));
}

void Input::SetCaret(int index) {
    caret = std::clamp(index, 0, static_cast<int>(text.size()));
    Invalidate();
}

void Input::SelectAll() {
    selectionStart = 0;
    selectionEnd = static_cast<int>(text.size());
    SetCaret(selectionEnd);
}

void Input::Focus() {
    Text::Focus();
    caretVisible = true;
    SetCaret(caret);
}

bool Input::Accepts(wchar_t character) const {
    if (character < FirstPrintable || character == DeleteCharacter) return false;
    return !characterFilter || characterFilter(character);
}

int Input::NextIndex(int index) const {
    const int length = static_cast<int>(text.size());
    if (index < length) ++index;
    if (index < length && IsTrailingUnit(text[static_cast<std::size_t>(index)])) ++index;
    return index;
}

int Input::PreviousIndex(int index) const {
    if (index > 0) --index;
    if (index > 0 && IsTrailingUnit(text[static_cast<std::size_t>(index)])) --index;
    return index;
}

void Input::AfterEdit() {
    RunTextChanged();
    RefreshMeasure();
    Invalidate();
}

void Input::Insert(const std::wstring& characters) {
    caret = std::clamp(caret, 0, static_cast<int>(text.size()));
    text.insert(static_cast<std::size_t>(caret), characters);
    caret += static_cast<int>(characters.size());
    caretVisible = true;
    AfterEdit();
}

void Input::Erase(int from, int to) {
    if (from == to) return;
    text.erase(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
    caret = from;
    caretVisible = true;
    AfterEdit();
}

void Input::DeleteSelection() {
    const auto [low, high] = GetSelectionRange();
    ClearSelection();
    Erase(low, high);
}

void Input::MoveCaret(int index, bool select) {
    const int before = caret;
    caret = std::clamp(index, 0, static_cast<int>(text.size()));
    caretVisible = true;
    if (!select) {
        ClearSelection();
    } else {
        if (!HasSelection()) selectionStart = before;
        selectionEnd = caret;
    }
    Invalidate();
}

void Input::Copy() {
    const std::wstring selected = GetSelectedText();
    if (password || selected.empty() || !gui) return;
    // A clipboard that another program keeps busy keeps its text; there is nobody to tell.
    static_cast<void>(gui->GetClipboard().WriteText(selected));
}

void Input::Paste() {
    if (!gui) return;
    std::wstring pasted = gui->GetClipboard().ReadText().value_or(std::wstring{});
    std::erase_if(pasted, [this](wchar_t character) { return !Accepts(character); });
    if (pasted.empty()) return;
    if (HasSelection()) DeleteSelection();
    Insert(pasted);
}

void Input::OnBlur() {
    Invalidate();
    Text::OnBlur();
}

void Input::OnKeyDown(const KeyEvent& event) {
    keyEvent = event;
    if (event.type == Platform::EventType::Character) {
        const auto character = static_cast<wchar_t>(event.code);
        if (Accepts(character)) {
            if (HasSelection()) DeleteSelection();
            Insert({character});
        }
    } else {
        HandleKey(event);
    }
    Text::OnKeyDown(event);
}

void Input::HandleKey(const KeyEvent& event) {
    using namespace Platform;
    // Control with alt is AltGr, which types letters.
    const bool shortcut = (event.modifiers & (ModifierControl | ModifierAlt)) == ModifierControl;
    if (shortcut && HandleShortcut(event.code)) return;
    const bool select = (event.modifiers & ModifierShift) != 0;
    switch (event.code) {
        case KeyBackspace:
            HasSelection() ? DeleteSelection() : Erase(PreviousIndex(caret), caret);
            break;
        case KeyDelete:
            HasSelection() ? DeleteSelection() : Erase(caret, NextIndex(caret));
            break;
        case KeyEscape:
            Blur();
            break;
        case KeyHome:
            MoveCaret(0, select);
            break;
        case KeyEnd:
            MoveCaret(static_cast<int>(text.size()), select);
            break;
        case KeyLeft:
            MoveCaret(PreviousIndex(caret), select);
            break;
        case KeyRight:
            MoveCaret(NextIndex(caret), select);
            break;
        default:
            break;
    }
}

bool Input::HandleShortcut(int key) {
    switch (key) {
        case 'A':
            SelectAll();
            return true;
        case 'C':
            Copy();
            return true;
        case 'V':
            Paste();
            return true;
        case 'X':
            if (!HasSelection()) return true;
            Copy();
            DeleteSelection();
            return true;
        default:
            return false;
    }
}

void Input::OnMouseDown() {
    Text::OnMouseDown();
    caretVisible = true;
    SetCaret(selectionEnd);
}

void Input::OnMouseMove() {
    Text::OnMouseMove();
    if (selecting) SetCaret(selectionEnd);
}

void Input::OnMouseUp() {
    Text::OnMouseUp();
    SetCaret(IndexUnderPointer());
    Focus();
}

void Input::OnMouseEnter() {
    hoveredInput = true;
    Text::OnMouseEnter();
}

void Input::OnMouseLeave() {
    hoveredInput = false;
    Text::OnMouseLeave();
}

void Input::Draw() {
    UpdateClipRect();
    DrawBackground();
    Platform::DrawTarget* target = gui ? gui->GetTarget() : nullptr;
    if (target) {
        target->PushClip(Platform::ToRectF(GetAbsoluteRect()));
        if (focusedFlag) DrawSelection();
        DrawShownText(ShowsPlaceholder() ? PlaceholderColor : look.textColor);
        if (focusedFlag && caretVisible) DrawCaret();
        target->PopClip();
    }
    DrawChildren();
}

void Input::DrawCaret() {
    Platform::Brush* brush = gui->GetSolidColorBrush(look.textColor);
    if (!brush) return;
    brush->SetOpacity(look.textColor.alpha * GetEffectiveOpacity());
    const float place = XOf(caret);
    const Rect rect = GetAbsoluteRect();
    gui->GetTarget()->DrawLine({place, static_cast<float>(rect.top) + 2.0F},
                               {place, static_cast<float>(rect.bottom) - 2.0F}, *brush, 1.0F);
}

void Input::SetScrollExact(float value) {
    scrollExact = std::max(0.0F, value);
    const int rounded = static_cast<int>(std::lround(scrollExact));
    if (rounded == scrollOffset) return;
    scrollOffset = rounded;
    Invalidate();
}

float Input::GetScrollGoal() {
    const auto overflow = static_cast<float>(measured.width - width + CaretRoom);
    if (text.empty() || width < 1 || overflow <= 0.0F) return 0.0F;
    if (focusedFlag) {
        const auto room = static_cast<float>(width - CaretRoom);
        const auto caretX = static_cast<float>(PrefixWidth(caret));
        float goal = scrollExact;
        if (caretX - goal > room) goal = caretX - room;
        if (caretX - goal < static_cast<float>(CaretRoom)) goal = caretX - CaretRoom;
        return std::min(goal, overflow);
    }
    if (hoveredInput)
        return std::min(scrollExact + std::max(LeastDrift, overflow / DriftTicks), overflow);
    return scrollExact > ReturnEnd ? scrollExact - scrollExact * ReturnShare : 0.0F;
}

void Input::Update(double time) {
    Text::Update(time);
    SetScrollExact(GetScrollGoal());
}

void Input::Reset() {
    characterFilter = nullptr;
    caret = 0;
    caretVisible = true;
    password = hoveredInput = false;
    placeholder.clear();
    scrollExact = 0.0F;
    Text::Reset();
    selectable = true;
    look.hAlign = HorizontalAlignment::Left;
    StartBlinking();
}

}  // namespace DirectGL
