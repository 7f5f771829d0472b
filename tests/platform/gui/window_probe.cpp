// A window that tells what happens to it and does what it is told, for window_test.py: a line on
// standard output for each event and answer, a command from each line of standard input. It ends
// with its input.

#include <array>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <queue>
#include <sstream>
#include <string>
#include <thread>

#include "platform/clock.h"
#include "platform/desktop.h"
#include "platform/text.h"

using namespace Platform;

namespace {

constexpr Size WindowSize{200, 120};

class CommandQueue {
public:
    void Put(std::string line) {
        const std::lock_guard guard(mutex_);
        lines_.push(std::move(line));
    }
    bool Take(std::string& line) {
        const std::lock_guard guard(mutex_);
        if (lines_.empty()) return false;
        line = std::move(lines_.front());
        lines_.pop();
        return true;
    }

private:
    std::mutex mutex_;
    std::queue<std::string> lines_;
};

void Say(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

std::string Describe(const Event& event) {
    constexpr std::array Names{"Wake",      "Close",       "Destroyed",    "Resized",  "Minimized",
                               "Exposed",   "PointerMove", "PointerLeave", "LeftDown", "LeftUp",
                               "RightDown", "RightUp",     "CaptureLost",  "Wheel",    "KeyDown",
                               "KeyUp",     "Character"};
    std::ostringstream text;
    text << Names[static_cast<std::size_t>(event.type)];
    switch (event.type) {
        case EventType::Resized:
            text << ' ' << event.size.width << ' ' << event.size.height;
            break;
        case EventType::PointerMove:
        case EventType::LeftDown:
        case EventType::LeftUp:
        case EventType::RightDown:
        case EventType::RightUp:
            text << ' ' << event.point.x << ' ' << event.point.y << ' ' << int{event.buttons};
            break;
        case EventType::Wheel:
            text << ' ' << event.point.x << ' ' << event.point.y << ' ' << event.wheelDelta;
            break;
        case EventType::KeyDown:
        case EventType::KeyUp:
            text << ' ' << event.key << ' ' << int{event.modifiers};
            break;
        case EventType::Character:
            text << ' ' << static_cast<unsigned>(event.character);
            break;
        default:
            break;
    }
    return text.str();
}

class Probe {
public:
    bool Open() {
        auto made =
            desktop_->OpenWindow({L"Window probe", 300, 200, WindowSize.width, WindowSize.height});
        window_ = std::move(made.object);
        if (!window_) return false;
        window_->MakeBorderless();
        window_->SetRoundedRegion(40);
        window_->MakeLayered();
        return Draw();
    }

    /// False at the end.
    bool Obey(const std::string& line) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        if (command == "quit") return false;
        if (command == "show") window_->Show();
        if (command == "hide") window_->Hide();
        if (command == "topmost") window_->ShowTopmost();
        if (command == "foreground") window_->BringToForeground();
        if (command == "minimize") window_->Minimize();
        if (command == "restore") window_->Restore();
        if (command == "capture") window_->SetCapture();
        if (command == "release") window_->ReleaseCapture();
        if (command == "draw") Draw();
        if (command == "destroy") {
            target_.reset();
            window_->Destroy();
        }
        if (command == "move") {
            Point to;
            words >> to.x >> to.y;
            window_->MoveTo(to);
        }
        if (command == "copy") {
            const bool written =
                desktop_->GetClipboard().WriteText(WideFromUtf8(line.substr(command.size() + 1)));
            Say(written ? "copied" : "busy");
        }
        if (command == "paste") {
            const auto text = desktop_->GetClipboard().ReadText();
            Say(text ? "pasted " + Utf8FromWide(*text) : "nothing to paste");
        }
        if (command == "state") SayState();
        return true;
    }

    void TellEvents() {
        for (Event event; window_->NextEvent(event);)
            Say(Describe(event));
    }

private:
    /// Red, but for a clear stripe at the right.
    bool Draw() {
        target_.reset();
        auto made = window_->CreateTarget(SurfaceKind::Layered, DeviceKind::Hardware);
        if (!made) {
            Say("no target");
            return false;
        }
        target_ = std::move(made.object);
        const auto red = target_->CreateSolidBrush({1.0F, 0.0F, 0.0F, 1.0F});
        target_->BeginFrame();
        target_->Clear({});
        target_->FillRectangle({0.0F, 0.0F, 150.0F, 120.0F}, *red.object);
        const Presentation presentation;
        const GraphicsResult shown = target_->EndFrame(&presentation);
        Say(shown == GraphicsOk ? "drawn" : "not drawn");
        return shown == GraphicsOk;
    }

    void SayState() {
        const Rect frame = window_->GetFrameRect();
        const Size client = window_->GetClientSize();
        const Size screen = desktop_->GetDisplay().DesktopSize();
        std::ostringstream text;
        text << "state exists=" << window_->Exists() << " visible=" << window_->IsVisible()
             << " minimized=" << window_->IsMinimized() << " foreground=" << window_->IsForeground()
             << " frame=" << frame.left << ',' << frame.top << ',' << frame.right << ','
             << frame.bottom << " client=" << client.width << ',' << client.height
             << " screen=" << screen.width << ',' << screen.height
             << " modes=" << !desktop_->GetDisplay().ListModes().empty();
        Say(text.str());
    }

    std::unique_ptr<Desktop> desktop_ = OpenDesktop();
    std::unique_ptr<NativeWindow> window_;
    std::unique_ptr<DrawTarget> target_;
};

}  // namespace

int main() {
    Probe probe;
    if (!probe.Open()) {
        Say("no window");
        return 1;
    }
    Say("ready");
    CommandQueue commands;
    std::thread reader([&] {
        for (std::string line; std::getline(std::cin, line);)
            commands.Put(line);
        commands.Put("quit");
    });
    for (bool going = true; going;) {
        for (std::string line; going && commands.Take(line);)
            going = probe.Obey(line);
        probe.TellEvents();
        SleepMilliseconds(2);
    }
    reader.join();
}
