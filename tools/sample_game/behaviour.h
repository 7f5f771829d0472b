#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// How the sample game is told to behave.
namespace SampleGame {

enum class Ready {
    Never,  ///< the game takes no part in the handshake
    Hold,   ///< it makes its ready event and never sets it
    Set,    ///< it makes the event and sets it after a while
};

struct Size {
    int width = 0;
    int height = 0;
};

struct Behaviour {
    Ready ready = Ready::Set;
    std::uint64_t readyAfter = 500;          ///< milliseconds
    std::optional<Size> window;              ///< of the window, when it shows one
    std::optional<std::uint64_t> exitAfter;  ///< milliseconds; without it the stop file ends it
    int exitCode = 0;
    std::wstring stopFile = L"sample_game.stop";  ///< in the game's folder
};

/// Reads settings "name=value", one a line or separated by semicolons:
///   ready=never | hold | MILLISECONDS
///   window=WIDTHxHEIGHT
///   exit-after=MILLISECONDS
///   exit-code=NUMBER
///   stop-file=NAME
/// Later ones replace earlier ones. False, with the setting in wrong, when one is not understood.
[[nodiscard]] bool ReadBehaviour(std::string_view text, Behaviour& behaviour, std::string& wrong);

}  // namespace SampleGame
