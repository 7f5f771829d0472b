#include "platform/text_layout.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/desktop.h"
#include "platform/resources.h"

using namespace Platform;

namespace {

/// With the private families Inter and Sora, each Regular and Bold.
Graphics& GraphicsWithFonts() {
    static const std::unique_ptr<Graphics> graphics = [] {
        auto opened = OpenGraphics();
        PrivateFonts& fonts = opened->GetPrivateFonts();
        for (const std::uint16_t id : {201, 202, 203, 204})
            EXPECT_EQ(fonts.AddFile(FindOwnResource(id)), GraphicsOk);
        EXPECT_EQ(fonts.BuildCollection(), GraphicsOk);
        return opened;
    }();
    return *graphics;
}

/// What a layout is made of, apart from the text.
struct Setting {
    std::wstring family = L"Inter";
    std::uint32_t weight = 400;
    float size = 16.0F;
    TextAlignment alignment = TextAlignment::Leading;
    bool wrap = false;
    float width = 300.0F;
    std::vector<TextRange> bold{};
};

std::unique_ptr<TextLayout> LayOut(const std::wstring& text, const Setting& setting = {}) {
    TextEngine& engine = GraphicsWithFonts().GetTextEngine();
    const auto format = engine.CreateTextFormat({.family = setting.family,
                                                 .privateFamily = true,
                                                 .size = setting.size,
                                                 .weight = setting.weight,
                                                 .locale = L"en"});
    EXPECT_TRUE(format) << std::hex << format.result;
    format.object->SetTextAlignment(setting.alignment);
    format.object->SetWordWrapping(setting.wrap);
    auto layout = engine.CreateTextLayout(
        *format.object,
        {.text = text, .maxWidth = setting.width, .maxHeight = 100.0F, .bold = setting.bold});
    EXPECT_TRUE(layout) << std::hex << layout.result;
    return std::move(layout.object);
}

float WidthOf(const std::wstring& text, const Setting& setting = {}) {
    return LayOut(text, setting)->GetMetrics().width;
}

float HeightOf(const std::wstring& text, const Setting& setting = {}) {
    return LayOut(text, setting)->GetMetrics().height;
}

}  // namespace

TEST(TextLayout, MeasuresAreThoseOfTheFonts) {
    // Inter at 16 pixels, from its own tables; rounding to whole pixels may add half of one a
    // letter.
    EXPECT_NEAR(WidthOf(L"Hamburg"), 69.0F, 4.0F);
    EXPECT_NEAR(HeightOf(L"Hamburg"), 19.4F, 1.5F);
    EXPECT_NEAR(WidthOf(L"Hamburg", {.size = 32.0F}), 2.0F * WidthOf(L"Hamburg"), 5.0F);
    EXPECT_NEAR(HeightOf(L"one\ntwo\nthree"), 3.0F * HeightOf(L"one"), 3.0F);
    EXPECT_GT(WidthOf(L"end  "), WidthOf(L"end") + 6.0F) << "blanks at the end count";
    EXPECT_EQ(WidthOf(L""), 0.0F);
    EXPECT_NEAR(HeightOf(L""), HeightOf(L"x"), 1.0F);
}

TEST(TextLayout, FacesDiffer) {
    const std::wstring text = L"The quick brown fox";
    // Large, so that rounding to whole pixels does not count.
    const auto width = [&](const wchar_t* family, std::uint32_t weight,
                           std::vector<TextRange> bold = {}) {
        return WidthOf(
            text, {.family = family, .weight = weight, .size = 60.0F, .bold = std::move(bold)});
    };
    for (const wchar_t* family : {L"Inter", L"Sora"})
        EXPECT_GT(width(family, 700), width(family, 400) * 1.01F);
    EXPECT_GT(width(L"Sora", 400), width(L"Inter", 400) * 1.01F);
    const float halfBold = width(L"Inter", 400, {{4, 5}});
    EXPECT_GT(halfBold, width(L"Inter", 400));
    EXPECT_LT(halfBold, width(L"Inter", 700));
    // A range that reaches beyond the end is cut.
    EXPECT_NEAR(width(L"Inter", 400, {{0, 1000}}), width(L"Inter", 700), 1.0F);
}

TEST(TextLayout, WrapsOnlyWhenTold) {
    const std::wstring text = L"The road from the harbour climbs through the old town";
    const float line = HeightOf(L"x");
    EXPECT_NEAR(HeightOf(text, {.width = 120.0F}), line, 1.0F);
    const auto wrapped = LayOut(text, {.wrap = true, .width = 120.0F});
    EXPECT_NEAR(wrapped->GetMetrics().height / line, 4.0F, 1.01F);
    EXPECT_LE(wrapped->GetMetrics().width, 126.0F);
    // No place to break: the word is broken, or stands over.
    EXPECT_GE(HeightOf(L"Hambuuuuuuuuuuuuuuuuuuurg", {.wrap = true, .width = 40.0F}), line);
}

TEST(TextLayout, CaretsAndHitsAgree) {
    const std::wstring text = L"Zażółć gęślą jaźń\nsecond line";
    for (const TextAlignment alignment :
         {TextAlignment::Leading, TextAlignment::Center, TextAlignment::Trailing}) {
        const auto layout = LayOut(text, {.alignment = alignment, .width = 400.0F});
        for (std::size_t index = 0; index <= text.size(); ++index) {
            const CaretPlace caret = layout->GetCaret(index);
            EXPECT_EQ(layout->HitTest({caret.x + 0.5F, caret.top + caret.height / 2.0F}), index);
            // Half a letter further on, the next place is as near.
            if (index < 17) {
                EXPECT_LT(caret.x, layout->GetCaret(index + 1).x) << index;
            }
        }
        EXPECT_GT(layout->GetCaret(18).top, layout->GetCaret(17).top + 10.0F);
        EXPECT_EQ(layout->GetCaret(1000).x, layout->GetCaret(text.size()).x);
        EXPECT_EQ(layout->HitTest({-50.0F, 5.0F}), 0U);
        EXPECT_EQ(layout->HitTest({1000.0F, 1000.0F}), text.size());
    }
    EXPECT_EQ(LayOut(L"")->HitTest({20.0F, 20.0F}), 0U);
    EXPECT_GT(LayOut(L"")->GetCaret(0).height, 10.0F);
}

TEST(TextLayout, StrangeTextsAreSet) {
    for (const std::wstring& text :
         {std::wstring(L"\0zero", 5), std::wstring(L"\n\n"), std::wstring(1, wchar_t{0xD800}),
          std::wstring(L"emoji \U0001F600 and \u4F60\u597D"), std::wstring(3000, L'W')}) {
        const auto layout = LayOut(text, {.wrap = true});
        EXPECT_GT(layout->GetMetrics().height, 0.0F);
        EXPECT_LE(layout->HitTest({50.0F, 10.0F}), text.size());
        EXPECT_GE(layout->GetCaret(text.size()).height, 0.0F);
    }
    Setting unknown{.family = L"No such family"};
    EXPECT_GE(HeightOf(L"text", unknown), 0.0F);
}
