#include "directgl/text.h"

#include "directgl/bold_marks.h"
#include "directgl/framed_text.h"
#include "gui_fixture.h"

namespace DirectGL {
namespace {

// At size 12 a character is 6 pixels wide, 7 when it is bold, and a line 15 high.
class TextTest : public GuiTest {
protected:
    Text* MakeText(const std::wstring& text, HorizontalAlignment alignment) {
        auto* made = Place(layer->Create<Text>(), 10, 20, 100, 30);
        made->SetHorizontalAlignment(alignment);
        made->SetText(text);
        return made;
    }
};

TEST_F(TextTest, BoldMarksAreTakenOut) {
    using Ranges = std::vector<Platform::TextRange>;
    const std::vector<std::tuple<std::wstring, std::wstring, Ranges>> cases{
        {L"", L"", {}},
        {L"plain * text", L"plain * text", {}},
        {L"**all**", L"all", {{0, 3}}},
        {L"a **b** c **d", L"a b c d", {{2, 1}, {6, 1}}},
        {L"****", L"", {}},
        {L"***x", L"*x", {{0, 2}}},
    };
    for (const auto& [marked, plain, bold] : cases) {
        const MarkedText read = ReadBoldMarks(marked);
        EXPECT_EQ(read.plain, plain);
        EXPECT_EQ(read.bold, bold);
    }
}

TEST_F(TextTest, ATextMeasuresWhatItShows) {
    Text* text = MakeText(L"", HorizontalAlignment::Left);
    EXPECT_EQ(text->GetMeasuredWidth(), 0);
    EXPECT_EQ(Drawn("DrawTextLayout"), "");
    text->SetText(L"**ab** c ", true);
    EXPECT_EQ(text->GetSize(), (Size{2 * 7 + 3 * 6, 15})) << "the trailing blank counts";
    text->SetFontSize(20);
    EXPECT_EQ(text->GetMeasuredHeight(), 25);
    EXPECT_EQ(Drawn("DrawTextLayout"), "10,20 \"ab c \" #ffffffff*1");
}

TEST_F(TextTest, WrappedHeightWrapsWhateverTheTextDoes) {
    Text* text = MakeText(L"aaa bbb ccc", HorizontalAlignment::Left);
    EXPECT_EQ(text->GetWrappedHeight(1000), 15);
    EXPECT_EQ(text->GetWrappedHeight(8 * 6), 30);
    EXPECT_EQ(text->GetWrappedHeight(4 * 6), 45);
    EXPECT_EQ(text->GetMeasuredHeight(), 15);
}

TEST_F(TextTest, ALayoutIsMadeOnceAndAgainWhenSomethingChanges) {
    Text* text = MakeText(L"abc", HorizontalAlignment::Left);
    Drawn("DrawTextLayout");
    const std::vector<std::function<void()>> changes{
        [&] { text->SetSize(90, 30); }, [&] { text->SetUnderline(true); },
        [&] { text->SetVerticalAlignment(VerticalAlignment::Bottom); },
        [&] { text->SetWordWrap(true); }};
    for (const auto& change : changes) {
        const int before = books->text.layoutsMade;
        change();
        Drawn("DrawTextLayout");
        books->failFrames = 1;  // a layout is no device object
        Drawn("DrawTextLayout");
        Drawn("DrawTextLayout");
        EXPECT_EQ(books->text.layoutsMade, before + 1);
    }
}

TEST_F(TextTest, AFailedFormatOrLayoutDrawsNothingAndIsTriedAgain) {
    books->text.failFormats = true;
    MakeText(L"abc", HorizontalAlignment::Left);
    EXPECT_EQ(Drawn("DrawTextLayout"), "");
    EXPECT_TRUE(
        log.back().starts_with("DirectGL::Utilities::GetTextFormat : Fail use of "
                               "CreateTextFormat! Res "));
    books->text.failFormats = false;
    books->text.failLayouts = true;
    EXPECT_EQ(Drawn("DrawTextLayout"), "");
    EXPECT_TRUE(log.back().starts_with("DirectGL::Text::DrawTextW:"));
    books->text.failLayouts = false;
    EXPECT_NE(Drawn("DrawTextLayout"), "");
}

TEST_F(TextTest, ThePointerSelects) {
    struct Case {
        HorizontalAlignment alignment;
        int left;  ///< where the text begins
    };
    for (const Case& test : {Case{HorizontalAlignment::Left, 10},
                             Case{HorizontalAlignment::Center, 10 + (100 - 37) / 2},
                             Case{HorizontalAlignment::Right, 10 + 100 - 37}}) {
        Text* text = MakeText(L"ab**c**def", test.alignment);
        text->SetSelectable(true);
        Native().LeftDown(test.left + 4, 25);  // nearer to 1 than to 0
        Native().PointerMove(test.left + 22, 25);
        Pump();
        EXPECT_EQ(text->GetSelectedText(), L"bc");
        EXPECT_EQ(Drawn("FillRectangle"), std::to_string(test.left + 6) + ",20," +
                                              std::to_string(test.left + 19) +
                                              ",50 #3333ffbf*0.75");
        Native().PointerMove(300, 25);
        Native().LeftUp(0, 25);
        Pump();
        EXPECT_EQ(text->GetSelectedText(), L"bcdef") << "an up does not select";
        Native().Click(test.left + 30, 25);
        Pump();
        EXPECT_EQ(text->GetSelectionStart(), Text::NoIndex);
        text->SelectAll();
        EXPECT_EQ(text->GetSelectedText(), L"abcdef");
        text->Remove();
        Tick();
    }
}

TEST_F(TextTest, AFramedTextIsCutToItsBox) {
    struct Case {
        std::wstring text;
        int width;
        bool ellipsis;
        std::wstring shown;
    };
    for (const Case& test :
         {Case{L"abcdef", 36, true, L"abcdef"}, Case{L"abcdef", 35, true, L"abcd\u2026"},
          Case{L"abcdef", 12, true, L"a\u2026"}, Case{L"abcdef", 5, true, L"\u2026"},
          Case{L"abcdef", 0, true, L"abcdef"}, Case{L"abcdef", 20, false, L"abcdef"},
          Case{L"", 50, true, L""}}) {
        auto* framed = Make<FramedText>(0, 0, test.width, 30);
        framed->SetEllipsis(test.ellipsis);
        framed->SetFullText(test.text);
        EXPECT_EQ(framed->GetShownText(), test.shown);
        EXPECT_EQ(framed->GetLabel()->GetText(), test.shown) << test.width;
        EXPECT_EQ(framed->GetLabel()->GetY(), 7) << "an empty text keeps its line";
    }
}

TEST_F(TextTest, TakingALookLeavesTextAndSelectionAlone) {
    Text* model = MakeText(L"model", HorizontalAlignment::Right);
    model->SetTextColor(Red);
    model->SetFontSize(20);
    Text* text = MakeText(L"text", HorizontalAlignment::Left);
    text->SetSelectable(true);
    text->SelectAll();
    text->SetTextChanged(Note("changed"));
    text->SetTextStyle(model->GetTextStyle());
    EXPECT_EQ(text->GetText(), L"text");
    EXPECT_EQ(text->GetSelectedText(), L"text");
    EXPECT_EQ(text->GetMeasuredWidth(), 40);
    text->SetText(L"other");
    EXPECT_EQ(TakeNotes(), (Notes{"changed"}));
}

}  // namespace
}  // namespace DirectGL
