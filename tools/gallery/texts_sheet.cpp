#include "directgl/framed_text.h"
#include "sheet.h"

namespace Gallery {

namespace {

using DirectGL::HorizontalAlignment;
using DirectGL::Text;
using DirectGL::VerticalAlignment;

void AddAlignments(DirectGL::Window* root) {
    Caption(root, 16, 12, L"Alignment");
    int index = 0;
    for (const auto vertical :
         {VerticalAlignment::Top, VerticalAlignment::Center, VerticalAlignment::Bottom}) {
        for (const auto horizontal :
             {HorizontalAlignment::Left, HorizontalAlignment::Center, HorizontalAlignment::Right}) {
            auto* cell = Box(root, 16 + index % 3 * 112, 28 + index / 3 * 34, 104, 30,
                             {.fill = Rgb(0x22100B), .border = Rgb(0x3E2119), .gradientEnd = {}});
            Text* text = Label(cell, 0, 0, L"Tolvan Gy\u0151r", 11, Rgb(0xF2E4DF));
            text->SetSize(104, 30);
            text->SetHorizontalAlignment(horizontal);
            text->SetVerticalAlignment(vertical);
            ++index;
        }
    }
}

void AddFaces(DirectGL::Window* root) {
    Caption(root, 16, 140, L"Faces");
    int y = 158;
    for (const wchar_t* family : {L"Inter", L"Sora"}) {
        Label(root, 16, y, L"Regular 13", 13, Rgb(0xF2E4DF), 400, family);
        Label(root, 120, y, L"Bold 13", 13, Rgb(0xF2E4DF), 700, family);
        Label(root, 216, y - 4, L"TOLVAN", 18, Rgb(0xE8603A), 700, family);
        y += 24;
    }
    Label(root, 16, y, L"**Choose a language** for **Tolvan**.", 12, Rgb(0xB27A69));
    Text* underlined = Label(root, 232, y, L"Underlined", 12, Rgb(0xC9943A));
    underlined->SetUnderline(true);
    y += 20;
    Label(root, 16, y,
          L"Za\u017C\u00F3\u0142\u0107 g\u0119\u015Bl\u0105 \u00B7 \u00E1rv\u00EDzt\u0171r\u0151 "
          L"\u00B7 \u011F\u0131\u015F \u00B7 \u00F1 \u00B7 \u00DF",
          12, Rgb(0xF2E4DF));
}

void AddParagraph(DirectGL::Window* root) {
    Caption(root, 16, 252, L"Wrapped to 328 pixels, and its measured height");
    Text* text = Label(root, 16, 270,
                       L"The road from the harbour climbs through the old town, past the "
                       L"**lantern makers** and the bakers, until it reaches the gate.\nA second "
                       L"line begins here.",
                       12, Rgb(0xB27A69));
    text->SetWordWrap(true);
    const int wrapped = text->GetWrappedHeight(328);
    text->SetSize(328, wrapped);
    Box(root, 16, 270 + wrapped + 2, 328, 1,
        {.fill = Rgb(0xE8603A), .border = {}, .gradientEnd = {}});
}

DirectGL::FramedText* Framed(DirectGL::Window* root, int y, const std::wstring& text) {
    auto* framed = Put<DirectGL::FramedText>(root, 16, y, 200, 20);
    DirectGL::TextStyle look = framed->GetLabel()->GetTextStyle();
    look.font = L"Inter";
    look.fontSize = 11;
    look.textColor = Rgb(0xF2E4DF);
    framed->GetLabel()->SetTextStyle(look);
    framed->SetStyle({.fill = Rgb(0x22100B), .border = Rgb(0x3E2119), .gradientEnd = {}});
    framed->SetFullText(text);
    return framed;
}

}  // namespace

Sheet TextsSheet() {
    return {
        "texts", [](DirectGL::Window* root) {
            AddAlignments(root);
            AddFaces(root);
            AddParagraph(root);
            Caption(root, 16, 350, L"Framed: fits, cut, clipped");
            Framed(root, 368, L"C:\\Games\\Tolvan");
            auto* cut = Framed(root, 394, L"C:\\Program Files\\Games\\Tolvan Online\\Data");
            auto* clipped = Framed(root, 420, L"C:\\Program Files\\Games\\Tolvan Online\\Data");
            clipped->SetEllipsis(false);
            Caption(root, 16, 452, L"Selectable");
            Text* selectable =
                Label(root, 16, 470, L"Drag over these words to select them", 13, Rgb(0xF2E4DF));
            selectable->EnableMouse();
            selectable->SetSelectable(true);
            return std::vector<Step>{{"still", [](Stage&) {}},
                                     {"scrolled",
                                      [=](Stage& stage) {
                                          stage.PointAt(cut);
                                          stage.Wait(3.0);
                                      }},
                                     {"selected", [=](Stage& stage) {
                                          const DirectGL::Rect rect = selectable->GetAbsoluteRect();
                                          stage.Native().LeftDown(rect.left + 40, rect.top + 5);
                                          stage.Native().PointerMove(rect.left + 130, rect.top + 5);
                                          stage.Native().LeftUp(rect.left + 130, rect.top + 5);
                                          stage.Wait(1.0);
                                      }}};
        }};
}

}  // namespace Gallery
