// A stand-in for the game client: it takes part in the launcher's ready handshake, or does not, as
// it is told by "sample_game.cfg" beside it and then by the variable TOLVAN_SAMPLE_GAME
// (behaviour.h tells the words), and writes what it does to "sample_game.log" in its working
// folder, which for a client is its own.

#include <cstdio>
#include <span>
#include <string>

#include "behaviour.h"
#include "platform/clock.h"
#include "platform/entry.h"
#include "platform/files.h"
#include "platform/named_objects.h"
#include "platform/paths.h"
#include "platform/processes.h"
#include "platform/text.h"
#include "window.h"

using namespace Platform;

namespace SampleGame {

namespace {

constexpr std::uint32_t LoopMilliseconds = 5;
constexpr int WrongSettings = 100;
constexpr int NoWindow = 101;
constexpr int NoEvent = 102;

std::wstring OwnFolder() {
    const std::wstring path = OwnPath();
    return path.substr(0, path.rfind(L'\\') + 1);
}

/// The game's log: a line for each thing it does, with the milliseconds since its start.
class Log {
public:
    Log() {
        // Without a log the game plays on.
        static_cast<void>(file_.Open(
            L"sample_game.log", {.access = AccessWrite, .disposition = Disposition::CreateAlways}));
    }
    void Write(const std::string& text) {
        char time[32];
        std::snprintf(time, sizeof time, "[%6llu ms] ",
                      static_cast<unsigned long long>(TickMilliseconds() - begin_));
        const std::string line = time + text + '\n';
        static_cast<void>(file_.Write(std::as_bytes(std::span(line))));
    }

private:
    File file_;
    std::uint64_t begin_ = TickMilliseconds();
};

std::string ReadSettingsFile() {
    File file;
    if (!Succeeded(file.Open(OwnFolder() + L"sample_game.cfg", {}))) return {};
    std::string text(4096, '\0');
    std::size_t got = 0;
    if (!Succeeded(file.ReadAt(0, std::as_writable_bytes(std::span(text)), got))) return {};
    text.resize(got);
    return text;
}

class Game {
public:
    explicit Game(const std::wstring& commandLine) {
        log_.Write("started, pid=" + std::to_string(OwnProcessId()));
        log_.Write("program=" + Utf8FromWide(OwnPath()));
        log_.Write("arguments=" + Utf8FromWide(commandLine));
    }

    int Run() {
        std::string wrong;
        const std::string fromEnvironment = Utf8FromWide(GetEnvironmentText(L"TOLVAN_SAMPLE_GAME"));
        if (!ReadBehaviour(ReadSettingsFile(), behaviour_, wrong) ||
            !ReadBehaviour(fromEnvironment, behaviour_, wrong)) {
            return End("setting not understood: " + wrong, WrongSettings);
        }
        if (behaviour_.window && !ShowWindow()) return End("no window", NoWindow);
        if (behaviour_.ready != Ready::Never && !MakeEvent()) return End("no event", NoEvent);
        return Play();
    }

private:
    bool ShowWindow() {
        window_ = Window::Show(L"Tolvan Online (sample game)", behaviour_.window->width,
                               behaviour_.window->height);
        if (window_) log_.Write("window shown");
        return window_ != nullptr;
    }

    bool MakeEvent() {
        bool existed = false;
        const std::wstring name = L"Local\\TolvanOnline.Ready." + std::to_wstring(OwnProcessId());
        if (!Succeeded(ready_.Create(name, existed))) return false;
        log_.Write("ready event made");
        return true;
    }

    int Play() {
        const std::uint64_t begin = TickMilliseconds();
        const std::wstring stopFile = OwnFolder() + behaviour_.stopFile;
        bool isSet = behaviour_.ready != Ready::Set;
        for (;;) {
            const std::uint64_t played = TickMilliseconds() - begin;
            if (!isSet && played >= behaviour_.readyAfter) {
                if (!Succeeded(ready_.Set())) return End("event cannot be set", NoEvent);
                isSet = true;
                log_.Write("ready event set");
            }
            if (behaviour_.exitAfter && played >= *behaviour_.exitAfter) {
                return End("time is over", behaviour_.exitCode);
            }
            if (PathExists(stopFile)) return End("told to stop", behaviour_.exitCode);
            if (window_ && !window_->Pump()) return End("window closed", behaviour_.exitCode);
            SleepMilliseconds(LoopMilliseconds);
        }
    }

    int End(const std::string& reason, int code) {
        log_.Write("ends with " + std::to_string(code) + ": " + reason);
        return code;
    }

    Log log_;
    Behaviour behaviour_;
    NamedEvent ready_;
    std::unique_ptr<Window> window_;
};

}  // namespace

}  // namespace SampleGame

int ProgramMain(const std::wstring& commandLine) {
    return SampleGame::Game(commandLine).Run();
}
