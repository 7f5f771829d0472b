#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/state.h"
#include "update/handoff.h"

/// The two readers of the command line, which is the raw text behind the program's name. Neither
/// knows an error: what they do not find keeps its default. Pure; any input is fine.
namespace Launcher {

struct Simulation {
    bool on = false;
    bool fail = false;
    bool cancel = false;
    float speed = 1.0F;  ///< 0.25 slow, 4.0 fast
};

/// What the switches ask for. They are found as plain substrings, anywhere, case-sensitively.
struct Switches {
    bool noPatch = false;       ///< --nopatch
    bool uninstall = false;     ///< --uninstall
    bool force32 = false;       ///< --force32
    bool minimizeTest = false;  ///< --minimizetest
    bool licenceEnd = false;    ///< --eulaend
    bool checkOnly = false;     ///< --checkonly
    bool selfTest = false;      ///< --selftest
    bool topmost = false;       ///< --topmost, as a word of its own
    Simulation simulation;      ///< --simulate and its four forms
    /// --autoquit, --autoquit=SECONDS: seconds after the first tick.
    std::optional<double> autoQuitSeconds;
    int language = -1;          ///< --lang=, an index of the text table
    int season = -1;            ///< --season=, an index of the season table
    std::optional<State> page;  ///< --page=
};

[[nodiscard]] Switches ReadSwitches(std::wstring_view commandLine);

/// What the launcher that starts a copy or a successor of itself tells it.
struct HandoffArgs {
    HandoffOperation op = HandoffOperation::None;
    std::wstring target;  ///< the game folder; without it op is None
    std::wstring dest;    ///< for a move: where to
    bool keepSettings = false;
    bool sub = true;            ///< for a move: into a folder of its own below dest
    std::uint32_t waitPid = 0;  ///< the process that this one replaces
    int x = 0;                  ///< where its window stands on the screen
    int y = 0;
    bool hasPos = false;

    /// A plain start, of which there is only one at a time.
    bool IsPlainStart() const { return op == HandoffOperation::None && waitPid == 0; }
};

/// Values read "--name=value" or "--name="value"": an unquoted value ends at a blank, and an empty
/// one, or one whose closing quotation mark is missing, counts as not there.
[[nodiscard]] HandoffArgs ParseHandoffArgs(std::wstring_view commandLine);

}  // namespace Launcher
