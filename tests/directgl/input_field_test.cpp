#include "directgl/input.h"
#include "gui_fixture.h"

namespace DirectGL {
namespace {

using Platform::ModifierControl;

// At size 12 a character is 6 pixels wide.
class InputFieldTest : public GuiTest {
protected:
    InputFieldTest() {
        field->SetTextChanged(Note("changed"));
        Native().LeftDown(5, 10);
        Native().LeftUp(5, 10);
        Pump();
    }

    void Type(const std::wstring& text, std::uint8_t modifiers = 0) {
        Native().Type(text, modifiers);
        Pump();
    }

    void Press(int key, std::uint8_t modifiers = 0) {
        Native().Press(key, modifiers);
        Pump();
    }

    Input* field = Place(layer->Create<Input>(), 0, 0, 100, 20);
};

TEST_F(InputFieldTest, WhatChangesNothingTellsNothing) {
    Type(L"\u0107**");
    EXPECT_EQ(TakeNotes().size(), 3U);
    Press(Platform::KeyDelete);
    Press(Platform::KeyHome);
    Press(Platform::KeyBackspace);
    Type(L"\x7F\r\t");
    EXPECT_EQ(TakeNotes(), Notes{});
    EXPECT_EQ(field->GetText(), L"\u0107**");
}

TEST_F(InputFieldTest, AClipboardThatIsBusyOrHoldsControlCharactersDoesNoHarm) {
    desktop.clipboard.text = L"1\n2\x7F";
    Press('V', ModifierControl);
    EXPECT_EQ(field->GetText(), L"12");
    desktop.clipboard.busy = true;
    Press('A', ModifierControl);
    Press('V', ModifierControl);
    EXPECT_EQ(field->GetText(), L"12");
    EXPECT_EQ(field->GetSelectedText(), L"12") << "nothing came, nothing goes";
}

TEST_F(InputFieldTest, AFilterRefusesWithoutAnyEffect) {
    Type(L"12");
    field->SetCharacterFilter([](wchar_t c) { return c >= L'0' && c <= L'9'; });
    Press('A', ModifierControl);
    TakeNotes();
    Type(L"x");
    EXPECT_EQ(field->GetText(), L"12");
    EXPECT_EQ(field->GetSelectedText(), L"12");
    desktop.clipboard.text = L"x3y4";
    Press('V', ModifierControl);
    EXPECT_EQ(field->GetText(), L"34");
}

TEST_F(InputFieldTest, APasswordIsNeitherShownNorCopied) {
    field->SetPassword(true);
    Type(L"secret");
    Press('A', ModifierControl);
    Press('C', ModifierControl);
    EXPECT_EQ(desktop.clipboard.text, std::nullopt);
    EXPECT_EQ(Drawn("DrawTextLayout"), "0,0 \"******\" #ffffffff*1");
}

TEST_F(InputFieldTest, ThePlaceholderShowsInAnEmptyFieldWithoutFocus) {
    field->SetPlaceholder(L"Name");
    EXPECT_EQ(Drawn("DrawTextLayout"), "");
    field->Blur();
    EXPECT_EQ(Drawn("DrawTextLayout"), "0,0 \"Name\" #a6a6a6ff*1");
    field->SelectAll();
    EXPECT_EQ(field->GetSelectedText(), L"");
    field->SetText(L"", true);
    EXPECT_EQ(field->GetSize(), Size{}) << "a placeholder takes no room";
}

TEST_F(InputFieldTest, TheCaretStandsWhereThePointerPutsItAndBlinks) {
    Type(L"abcdef");
    Native().Click(14, 10);
    Pump();
    EXPECT_EQ(Drawn("DrawLine"), "12,2,12,18,1 #ffffffff*1");
    Tick(31);
    EXPECT_EQ(Drawn("DrawLine"), "");
    Press(Platform::KeyLeft);
    EXPECT_NE(Drawn("DrawLine"), "") << "a moved caret is seen at once";
    while (!Frame().empty()) {
    }
    field->Blur();
    EXPECT_FALSE(Frame().empty()) << "the caret goes at once";
    while (!Frame().empty()) {
    }
    Tick(120);
    EXPECT_TRUE(Frame().empty()) << "a field without focus asks for no frames";
}

TEST_F(InputFieldTest, WithoutFocusTheTextGoesBackAndDriftsUnderThePointer) {
    Type(std::wstring(30, L'x'));  // 180 pixels in a field of 100
    Tick();
    EXPECT_EQ(field->GetScrollOffset(), 82);
    field->Blur();
    Native().PointerMove(150, 90);
    Pump();
    Tick(30);
    EXPECT_EQ(field->GetScrollOffset(), 0);
    Native().PointerMove(10, 10);
    Pump();
    Tick(60);
    EXPECT_EQ(field->GetScrollOffset(), 82);
}

}  // namespace
}  // namespace DirectGL
