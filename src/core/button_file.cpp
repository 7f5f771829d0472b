#include "core/button_file.h"

#include "deployment_values.h"

#if TOLVAN_DEVELOPER_BUILD

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/boot_log.h"
#include "core/globals.h"
#include "core/install_flow.h"
#include "core/move_flow.h"
#include "core/play.h"
#include "core/relink_flow.h"
#include "core/run.h"
#include "core/timing.h"
#include "core/uninstall_flow.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace Launcher {

namespace {

constexpr double SecondsBetweenLooks = 0.02;
constexpr std::uint64_t AssumedGameBytes = 2'576'980'378;

using Words = std::vector<std::string>;

/// What an action takes from the running program.
struct Hand {
    const Switches& switches;
    WindowPosition position;
};

bool Names(const Words& words, std::string_view name) {
    return std::ranges::find(words, name) != words.end();
}

void PressInstall(const Words& words, const Hand& hand) {
    if (words.size() < 3) return;
    BeginInstall({.path = Platform::WideFromUtf8(words[1]),
                  .desktopShortcut = Names(words, "desktop"),
                  .startMenuEntry = Names(words, "startmenu"),
                  .fullDownload = Names(words, "full"),
                  .language = std::atoi(words[2].c_str()),
                  .estimatedBytes = AssumedGameBytes},
                 hand.switches.noPatch);
}

void PressUninstall(const Words& words, const Hand& hand) {
    if (!MayMaintain("uninstall")) return;
    BeginUninstall(UninstallTarget(), Names(words, "keep"), hand.position);
}

void PressMove(const Words& words, const Hand& hand) {
    if (words.size() < 2 || !MayMaintain("relocate")) return;
    BeginMove(Platform::WideFromUtf8(words[1]), Names(words, "sub"), hand.position);
}

void PressRelink(const Words& words, const Hand&) {
    if (words.size() < 2) return;
    std::vector<std::wstring> others;
    for (std::size_t index = 2; index < words.size(); ++index)
        others.push_back(Platform::WideFromUtf8(words[index]));
    BeginRelink(Platform::WideFromUtf8(words[1]), !others.empty(), others);
}

struct Button {
    std::string_view name;
    void (*press)(const Words& words, const Hand& hand);
};

constexpr Button Buttons[] = {
    {"play", [](const Words&, const Hand&) { (void)StartClient(); }},
    {"retry", [](const Words&, const Hand& hand) { RetryRun(false, hand.switches.checkOnly); }},
    {"repair", [](const Words&, const Hand& hand) { RetryRun(true, hand.switches.checkOnly); }},
    {"install", PressInstall},
    {"install-retry", [](const Words&, const Hand& hand) { RetryInstall(hand.switches.noPatch); }},
    {"install-cancel", [](const Words&, const Hand&) { g_installEngine.CancelInstall(); }},
    {"uninstall", PressUninstall},
    {"move", PressMove},
    {"search", [](const Words&, const Hand&) { StartCopySearch(); }},
    {"relink", PressRelink},
    {"close", [](const Words&, const Hand&) { g_state = State::Halt; }},
};

void Press(std::string_view line, const Hand& hand) {
    Words words;
    for (std::size_t begin = 0; begin <= line.size();) {
        const std::size_t end = std::min(line.find('\t', begin), line.size());
        words.emplace_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
    const auto* button = std::ranges::find(Buttons, words.front(), &Button::name);
    BootLogF("button: %s", words.front().c_str());
    if (button != std::end(Buttons)) button->press(words, hand);
}

/// The file's text from the offset on; empty while there is none.
std::string ReadFrom(const std::wstring& path, std::uint64_t offset) {
    Platform::File file;
    std::array<char, 4096> text{};
    std::size_t got = 0;
    if (!Platform::Succeeded(file.Open(path, {})) ||
        !Platform::Succeeded(file.ReadAt(offset, std::as_writable_bytes(std::span(text)), got))) {
        return {};
    }
    return std::string(text.data(), got);
}

/// A handoff copy has the environment of its original, whose buttons are not pressed again.
std::uint64_t FirstOffset(const std::wstring& path) {
    Platform::FileInfo info;
    return IsHandoffCopy() && Platform::Succeeded(Platform::GetFileInfo(path, info)) ? info.size
                                                                                     : 0;
}

void LogFoundCopies() {
    for (const std::wstring& folder : TakeFoundCopies())
        BootLog("notfound: found " + Platform::Utf8FromWide(folder));
}

}  // namespace

void PressButtonsOfFile(double time, const Switches& switches, WindowPosition position) {
    static const std::wstring path = Platform::GetEnvironmentText(L"TOLVAN_BUTTON_FILE");
    static std::uint64_t offset = FirstOffset(path);
    static Periodic pace{SecondsBetweenLooks};
    if (path.empty() || !pace.IsDue(time)) return;
    LogFoundCopies();
    const std::string text = ReadFrom(path, offset);
    std::string_view rest = text;
    for (std::size_t end = rest.find('\n'); end != rest.npos; end = rest.find('\n')) {
        Press(rest.substr(0, end), {.switches = switches, .position = position});
        rest.remove_prefix(end + 1);
        offset += end + 1;
    }
}

}  // namespace Launcher

#else

void Launcher::PressButtonsOfFile(double, const Switches&, WindowPosition) {}

#endif
