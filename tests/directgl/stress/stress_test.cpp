// All three threads of the toolkit busy at once, a user who never rests, and a device that keeps
// getting lost. What it is for shows under the sanitizers. TOLVAN_STRESS_SECONDS says how long each
// kind of target runs, 1 second unless set.

#include <cstdlib>
#include <functional>
#include <random>
#include <thread>

#include "directgl/targets/page.h"
#include "directgl/targets/target_fixture.h"
#include "platform/system_time_source.h"

namespace DirectGL {
namespace {

constexpr int Width = 200;
constexpr int Height = 100;
constexpr std::size_t FewWidgets = 30;

double GetSeconds() {
    const char* told = std::getenv("TOLVAN_STRESS_SECONDS");
    return told ? std::atof(told) : 1.0;
}

class Dice {
public:
    explicit Dice(unsigned seed) : engine_(seed) {}
    int operator()(int below) { return static_cast<int>(engine_() % static_cast<unsigned>(below)); }
    template <class T, std::size_t Count>
    const T& PickFrom(const T (&choices)[Count]) {
        return choices[engine_() % Count];
    }

private:
    std::minstd_rand engine_;
};

WidgetEventRet RemoveIt(Window* widget) {
    widget->Remove();
    return WidgetEventRet::Done;
}

/// What the program does to its widgets, on the message thread and with the lock.
class Program {
public:
    Program(Gui& gui, Platform::Graphics& graphics, Platform::HeadlessDesktop& desktop)
        : books_(dynamic_cast<Platform::RecordingGraphics*>(&graphics)), desktop_(desktop) {
        root_ = gui.AddLayer("UI")->Create<FrameWindow>(L"root");
        root_->SetSize(Width, Height);
        root_->SetCornerRadius(12);
        root_->SetColor(Blue);
        Platform::Image image{{8, 8}, std::vector<std::byte>(256, std::byte{200})};
        picture_ = Utilities::MakeResourceHandle(graphics.GetImageCodec().EncodePng(image));
    }

    void Act() {
        const auto& children = root_->GetChildren();
        if (children.size() < FewWidgets) FillPage(root_, picture_);
        Window* picked =
            children[static_cast<std::size_t>(dice_(static_cast<int>(children.size())))].get();
        const std::function<void()> acts[] = {
            [&] { picked->Remove(); },
            [&] {
                picked->MoveTo({dice_(Width), dice_(Height)}, 0.1);
            },
            [&] {
                picked->ResizeTo({10 + dice_(90), 10 + dice_(40)}, 0.1);
            },
            [&] { picked->FadeTo(0.2F, 0.05, RemoveIt); },
            [&] { picked->SetPulse(0.1F, 1.0F, 100.0F); },
            [&] { picked->AddTimer(0.05, RemoveIt); },
            [&] { picked->IsVisible() ? picked->Hide() : picked->Show(); },
            [&] { picked->BringToFront(); },
            [&] { picked->Focus(); },
            [&] { Answer(picked); },
            [&] { CutOff(picked); },
            [&] { LoseDevice(); },
        };
        dice_.PickFrom(acts)();
    }

private:
    void Answer(Window* widget) {
        const std::wstring words = L"Words " + std::to_wstring(dice_(1000));
        if (auto* text = dynamic_cast<Text*>(widget)) text->SetText(words);
        if (auto* framed = dynamic_cast<FramedText*>(widget)) framed->SetFullText(words + words);
        if (auto* button = dynamic_cast<Button*>(widget)) button->SetClicked(RemoveIt);
    }

    void CutOff(Window* widget) {
        root_->RemoveChild(widget);
        if (dice_(2) == 0)
            root_->AddChild(widget);
        else
            widget->Remove();
    }

    void LoseDevice() {
        if (books_ && dice_(20) == 0) books_->failFrames = 1 + dice_(3);
        if (books_ && dice_(40) == 0) books_->failObjects = dice_(10);
        if (dice_(60) == 0) desktop_.Window()->FailTargets(1);
    }

    Platform::RecordingGraphics* books_;  ///< that can fail on demand
    Platform::HeadlessDesktop& desktop_;
    FrameWindow* root_ = nullptr;
    ImageHandle picture_;
    Dice dice_{1};
};

/// What reaches a window from outside, on a thread of its own.
void Annoy(Gui& gui, Platform::HeadlessWindow& window, Dice& dice) {
    using Platform::EventType;
    const int x = dice(Width);
    const int y = dice(Height);
    const std::function<void()> events[] = {
        [&] { window.PointerMove(x, y); },
        [&] { window.LeftDown(x, y); },
        [&] { window.LeftUp(x, y); },
        [&] { window.RightDown(x, y); },
        [&] { window.RightUp(x, y); },
        [&] { window.PointerLeave(); },
        [&] { window.Turn(x, y, 120 - 240 * dice(2)); },
        [&] { window.Type(L"typed "); },
        [&] { window.Press('A' + dice(26), static_cast<std::uint8_t>(dice(8))); },
        [&] { window.Push({.type = EventType::CaptureLost}); },
        [&] { window.Resize(Width - dice(20), Height - dice(20)); },
        [&] { window.SetMinimizedSilently(dice(4) == 0); },
        [&] { window.Push({.type = EventType::Minimized}); },
        [&] { gui.SetWindowOpacity(0.5F); },
    };
    dice.PickFrom(events)();
    gui.MarkDirty();
}

class StressTest : public testing::TestWithParam<TargetKind> {};
INSTANTIATE_TEST_SUITE_P(Targets, StressTest, AllTargets, NameOfKind);

TEST_P(StressTest, ThreeThreadsAndAUserAtOnce) {
    SetLogSink([](std::string_view) {});
    const std::unique_ptr<Platform::Graphics> graphics = GetParam().open();
    Platform::SystemTimeSource time;
    Platform::HeadlessDesktop desktop(*graphics, time);
    std::atomic<int> frames = 0;
    {
        Gui gui(desktop);
        ASSERT_TRUE(gui.Create({.title = L"", .width = Width, .height = Height}));
        gui.SetLayered();
        gui.SetAlwaysRender();
        gui.SetFps(100);
        gui.SetUps(100);
        Program program(gui, *graphics, desktop);
        gui.StartRenderingThread();
        gui.StartUpdatingThread();
        std::atomic<bool> over = false;
        std::thread user([&] {
            Dice dice(2);
            while (!over) {
                Annoy(gui, *desktop.Window(), dice);
                if (gui.GetRenderState() == Gui::RenderState::Drew) ++frames;
                time.Sleep(1);
            }
            gui.Quit();
        });
        const double end = gui.Now() + GetSeconds();
        gui.MessageLoop([&](double now) {
            program.Act();
            if (now >= end) over = true;
            return 1.0;
        });
        user.join();
        EXPECT_GT(gui.GetLastRenderTime(), 0.0);
        EXPECT_GT(gui.GetLastUpdateTime(), 0.0);
    }
    EXPECT_GT(frames, 0);
    if (const auto* books = dynamic_cast<Platform::RecordingGraphics*>(graphics.get())) {
        EXPECT_EQ(books->liveTargets, 0);
        EXPECT_EQ(books->liveObjects, 0);
    }
    SetLogSink({});
}

}  // namespace
}  // namespace DirectGL
