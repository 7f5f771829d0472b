// The loss of the drawing device at any frame, and a device that is short of everything.

#include "directgl/targets/page.h"
#include "directgl/targets/target_fixture.h"

namespace DirectGL {
namespace {

class PageTest : public TargetTest {
protected:
    PageTest() {
        auto* page = Make<FrameWindow>(0, 0, Width, Height);
        page->SetCornerRadius(10);
        page->SetStyle({.fill = Blue, .border = White, .gradientEnd = Green, .gradient = true});
        FillPage(page, Encode(2, {Red, Green, Blue, White}));
        Tick();
    }

    /// Frames as they come, until one is whole again.
    const Platform::Image& Recover() {
        for (int i = 0; i < 100; ++i) {
            clock.Advance(0.1);
            Shoot();
            const bool failing = books && (books->failFrames > 0 || books->failObjects > 0);
            if (gui.GetTarget() && !failing) break;
        }
        return Shoot();
    }
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

/// What only the recording target can be made to do.
class LossTest : public PageTest {};
INSTANTIATE_TEST_SUITE_P(Targets, LossTest, testing::Values(RecordingKind), NameOfKind);

TEST_P(LossTest, AfterLostFramesEverythingIsDrawnAsBefore) {
    const Platform::Image whole = Shoot();
    for (int lost = 1; lost <= 8; ++lost) {
        books->failFrames = lost;
        EXPECT_EQ(Recover().pixels, whole.pixels) << lost << " frames lost in a row";
        EXPECT_EQ(books->liveTargets, 1);
    }
    Native().FailTargets(5);
    books->failFrames = 1;
    EXPECT_EQ(Recover().pixels, whole.pixels) << "without a target for a while";
}

TEST_P(LossTest, WhatCannotBeMadeStaysBlankUntilTheNextTarget) {
    const Platform::Image whole = Shoot();
    for (int missing = 1; missing < 40; missing += 3) {
        books->failFrames = 1;
        Shoot();
        books->failObjects = missing;
        Shoot();
        books->failObjects = 0;
        books->failFrames = 1;
        Shoot();
        EXPECT_EQ(Recover().pixels, whole.pixels) << missing << " objects missing";
    }
}

TEST_P(LossTest, AWidgetThatEndsWhileTheDeviceIsLostLeavesNothingBehind) {
    Native().FailTargets(1000);
    books->failFrames = 1;
    Shoot();
    ASSERT_EQ(gui.GetTarget(), nullptr);
    EXPECT_EQ(books->liveTargets, 0);
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
