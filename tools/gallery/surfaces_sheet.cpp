#include "directgl/frame_window.h"
#include "sheet.h"

namespace Gallery {

namespace {

/// Draws an arc over a ring, as progress rings and spinners do.
class RingWidget : public DirectGL::Window {
public:
    explicit RingWidget(DirectGL::Gui* itsGui) : Window(itsGui) {}
    void SetSweep(float degrees) { sweep_ = degrees; }
    void Draw() override {
        UpdateClipRect();
        Platform::DrawTarget* target = gui->GetTarget();
        if (!target) return;
        const DirectGL::Rect rect = GetAbsoluteRect();
        const Platform::PointF center{static_cast<float>(rect.left + rect.right) / 2.0F,
                                      static_cast<float>(rect.top + rect.bottom) / 2.0F};
        const float radius = static_cast<float>(width) / 2.0F - 3.0F;
        if (auto* track = gui->GetSolidColorBrush(Rgb(0x3E2119))) {
            track->SetOpacity(1.0F);
            target->DrawEllipse(center, radius, radius, *track, 5.0F);
        }
        if (!arc_) arc_ = target->CreateArc(radius, -90.0F, sweep_).object;
        auto* brush = gui->GetSolidColorBrush(Rgb(0xE8603A));
        if (!arc_ || !brush) return;
        brush->SetOpacity(1.0F);
        target->DrawArc(*arc_, center, 0.0F, *brush, 5.0F);
    }
    void ReleaseDeviceObjects() override {
        arc_.reset();
        Window::ReleaseDeviceObjects();
    }

private:
    float sweep_ = 90.0F;
    std::unique_ptr<Platform::Arc> arc_;
};

void AddFills(DirectGL::Window* root) {
    Caption(root, 16, 12, L"Fills, borders, corners");
    const auto red = Rgb(0xE8603A);
    const auto gold = Rgb(0xC9943A);
    const auto dark = Rgb(0x22100B);
    Box(root, 16, 30, 70, 50, {.fill = red, .border = red, .gradientEnd = {}});
    Box(root, 100, 30, 70, 50, {.fill = dark, .border = gold, .gradientEnd = {}});
    Box(root, 184, 30, 70, 50,
        {.fill = dark, .border = gold, .gradientEnd = {}, .borderWidth = 3.0F}, 12);
    Box(root, 268, 30, 70, 50, {.fill = red, .border = {}, .gradientEnd = {}}, 25);
    Box(root, 16, 92, 70, 50,
        {.fill = red, .border = {}, .gradientEnd = Rgb(0x3B2A9E), .gradient = true}, 8);
    Box(root, 100, 92, 70, 50,
        {.fill = red,
         .border = {},
         .gradientEnd = Rgb(0x3B2A9E),
         .gradient = true,
         .horizontal = true},
        8);
    Box(root, 184, 92, 70, 50, {.fill = Rgb(0xFFFFFF, 0.5F), .border = {}, .gradientEnd = {}}, 8);
    auto* faded = Box(root, 268, 92, 70, 50, {.fill = gold, .border = red, .gradientEnd = {}}, 8);
    faded->SetOpacity(0.4F);
}

void AddFrames(DirectGL::Window* root) {
    Caption(root, 16, 156, L"Frames clip their children");
    int x = 16;
    for (const int radius : {0, 24}) {
        auto* frame = Put<DirectGL::FrameWindow>(root, x, 174, 100, 80);
        frame->SetStyle({.fill = Rgb(0x22100B), .border = Rgb(0xC9943A), .gradientEnd = {}});
        frame->SetCornerRadius(radius);
        Box(frame, -20, -20, 70, 70, {.fill = Rgb(0xE8603A), .border = {}, .gradientEnd = {}});
        Box(frame, 50, 40, 70, 70, {.fill = Rgb(0x2FD17E), .border = {}, .gradientEnd = {}}, 20);
        x += 120;
    }
    auto* plain = Box(root, 268, 184, 60, 50,
                      {.fill = Rgb(0x22100B), .border = Rgb(0xC9943A), .gradientEnd = {}});
    Box(plain, 40, 30, 40, 40, {.fill = Rgb(0x33B6FF), .border = {}, .gradientEnd = {}});
}

void AddRings(DirectGL::Window* root) {
    Caption(root, 16, 270, L"Arcs with round ends");
    int x = 16;
    for (const float sweep : {30.0F, 120.0F, 200.0F, 330.0F}) {
        Put<RingWidget>(root, x, 290, 60, 60)->SetSweep(sweep);
        x += 84;
    }
}

}  // namespace

Sheet SurfacesSheet() {
    return {"surfaces", [](DirectGL::Window* root) {
                AddFills(root);
                AddFrames(root);
                AddRings(root);
                Caption(root, 16, 366, L"A move, a resize and a fade under way");
                auto* moving = Box(root, 16, 390, 40, 40,
                                   {.fill = Rgb(0xB45CFF), .border = {}, .gradientEnd = {}}, 6);
                auto* growing = Box(root, 16, 440, 40, 40,
                                    {.fill = Rgb(0x33B6FF), .border = {}, .gradientEnd = {}}, 6);
                auto* fading = Box(root, 16, 490, 320, 30,
                                   {.fill = Rgb(0xFFAB3D), .border = {}, .gradientEnd = {}}, 6);
                return std::vector<Step>{{"still", [](Stage&) {}},
                                         {"moving", [=](Stage& stage) {
                                              moving->MoveTo({300, 390}, 1.0);
                                              growing->ResizeTo({320, 40}, 1.0);
                                              fading->FadeTo(0.0F, 1.0);
                                              stage.Wait(0.5);
                                          }}};
            }};
}

}  // namespace Gallery
