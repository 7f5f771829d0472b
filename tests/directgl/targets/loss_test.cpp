// The loss of the drawing device at any frame, and a device that is short of everything.

#include "directgl/button.h"
#include "directgl/framed_text.h"
#include "directgl/image.h"
#include "directgl/input.h"
#include "directgl/modal.h"
#include "directgl/scrollbar.h"
#include "directgl/targets/target_fixture.h"
#include "directgl/toggle.h"

namespace DirectGL {
namespace {

/// One of everything, on a page.
class PageTest : public TargetTest {
protected:
    PageTest() {
        const ImageHandle picture = Encode(2, {Red, Green, Blue, White});
        auto* page = Make<FrameWindow>(0, 0, Width, Height);
        page->SetCornerRadius(10);
        page->SetStyle({.fill = Blue, .border = White, .gradientEnd = Green, .gradient = true});
        auto* image = page->Create<Image>();
        image->SetImageFromHandle(picture);
        image->SetSize(40, 30);
        auto* mask = Place(page->Create<Image>(), 50, 0, 0, 0);
        mask->SetImageFromHandle(picture);
        mask->SetTint(Red);
        auto* tiled = Place(page->Create<Image>(), 60, 0, 0, 0);
        tiled->SetImageFromHandle(picture);
        tiled->SetTile(5.0F, 5.0F);
        auto* button = Place(page->Create<Button>(), 80, 0, 40, 20);
        button->SetImages(picture, picture, picture, picture);
        auto* label = button->Create<Text>();
        label->SetText(L"Play", true);
        button->SetLabel(label);
        auto* pill = Place(page->Create<Button>(), 80, 25, 40, 20);
        pill->SetPill(true);
        pill->SetGradient(Red, Green, Blue);
        Place(page->Create<Toggle>(), 130, 0, 40, 20);
        Place(page->Create<Toggle>(), 130, 25, 40, 20)->SetImages(picture, picture, picture);
        auto* input = Place(page->Create<Input>(), 0, 50, 80, 20);
        input->SetText(L"typed");
        Place(page->Create<FramedText>(), 0, 75, 60, 20)->SetFullText(L"Longer than its box is");
        Place(page->Create<Scrollbar>(), 180, 0, 20, 100);
        auto* modal = Place(page->Create<Modal>(), 100, 50, 60, 40);
        modal->SetBackdrop(picture);
        modal->SetOpacity(0.5F);
        Tick();
    }

    /// Frames as they come, until one is whole again.
    const Platform::Image& Recover() {
        for (int i = 0; i < 100; ++i) {
            clock.Advance(0.1);
            Shoot();
            if (gui.GetTarget() && !IsFailing()) break;
        }
        return Shoot();
    }
    virtual bool IsFailing() const { return false; }
};
INSTANTIATE_TEST_SUITE_P(Targets, PageTest, AllTargets, NameOfKind);

TEST_P(PageTest, OnANewTargetEverythingIsDrawnAsBefore) {
    const Platform::Image whole = Shoot();
    ASSERT_GT(CountPainted({0, 0, Width, Height}), Width * Height / 2);
    for (const int failures : {0, 5}) {
        Native().Resize(50, 30);
        Pump();
        Shoot();
        Native().FailTargets(failures);
        Native().Resize(Width, Height);
        Pump();
        EXPECT_EQ(Recover().pixels, whole.pixels) << failures << " tries in vain";
    }
}

class LossTest : public PageTest {
protected:
    ~LossTest() override {
        gui.Clear();
        EXPECT_EQ(books.liveTargets, 0);
        EXPECT_EQ(books.liveObjects, 0);
    }
    bool IsFailing() const override { return books.failFrames > 0 || books.failObjects > 0; }

    Platform::RecordingGraphics& books = static_cast<Platform::RecordingGraphics&>(*graphics);
};
INSTANTIATE_TEST_SUITE_P(Targets, LossTest, testing::Values(RecordingKind), NameOfKind);

TEST_P(LossTest, AfterLostFramesEverythingIsDrawnAsBefore) {
    const Platform::Image whole = Shoot();
    for (int lost = 1; lost <= 8; ++lost) {
        books.failFrames = lost;
        EXPECT_EQ(Recover().pixels, whole.pixels) << lost << " frames lost in a row";
        EXPECT_EQ(books.liveTargets, 1);
    }
    Native().FailTargets(5);
    books.failFrames = 1;
    EXPECT_EQ(Recover().pixels, whole.pixels) << "without a target for a while";
}

TEST_P(LossTest, WhatCannotBeMadeStaysBlankUntilTheNextTarget) {
    const Platform::Image whole = Shoot();
    for (int missing = 1; missing < 40; missing += 3) {
        books.failFrames = 1;
        Shoot();
        books.failObjects = missing;
        Shoot();
        books.failObjects = 0;
        books.failFrames = 1;
        Shoot();
        EXPECT_EQ(Recover().pixels, whole.pixels) << missing << " objects missing";
    }
}

TEST_P(LossTest, AWidgetThatEndsWhileTheDeviceIsLostLeavesNothingBehind) {
    Native().FailTargets(1000);
    books.failFrames = 1;
    Shoot();
    ASSERT_EQ(gui.GetTarget(), nullptr);
    EXPECT_EQ(books.liveTargets, 0);
    Window* page = layer->GetWidgets().front().get();
    page->DeleteChildren();
    auto* image = page->Create<Image>();
    image->SetImageFromHandle(Encode(1, {Red}));
    image->SetSize(50, 50);
    Tick();
    Native().FailTargets(0);
    Recover();
    EXPECT_TRUE(Shows(25, 25, Red));
    EXPECT_EQ(At(100, 50)[3], 255) << "the page's ground";
}

}  // namespace
}  // namespace DirectGL
