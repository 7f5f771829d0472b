#include "behaviour.h"

#include <algorithm>
#include <charconv>

#include "platform/text.h"

namespace SampleGame {

namespace {

template <typename Number>
bool ReadNumber(std::string_view text, Number& number) {
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc{} && result.ptr == end;
}

bool ReadReady(std::string_view text, Behaviour& behaviour) {
    if (text == "never" || text == "hold") {
        behaviour.ready = text == "never" ? Ready::Never : Ready::Hold;
        return true;
    }
    behaviour.ready = Ready::Set;
    return ReadNumber(text, behaviour.readyAfter);
}

bool ReadWindow(std::string_view text, Behaviour& behaviour) {
    const std::size_t cross = text.find('x');
    Size& size = behaviour.window.emplace();
    return cross != std::string_view::npos && ReadNumber(text.substr(0, cross), size.width) &&
           ReadNumber(text.substr(cross + 1), size.height);
}

bool ReadExitAfter(std::string_view text, Behaviour& behaviour) {
    return ReadNumber(text, behaviour.exitAfter.emplace());
}

bool ReadExitCode(std::string_view text, Behaviour& behaviour) {
    return ReadNumber(text, behaviour.exitCode);
}

bool ReadStopFile(std::string_view text, Behaviour& behaviour) {
    behaviour.stopFile = Platform::WideFromUtf8(text);
    return !text.empty();
}

struct Setting {
    std::string_view name;
    bool (*read)(std::string_view, Behaviour&);
};

constexpr Setting Settings[] = {
    {"ready", ReadReady},        {"window", ReadWindow},      {"exit-after", ReadExitAfter},
    {"exit-code", ReadExitCode}, {"stop-file", ReadStopFile},
};

bool ReadSetting(std::string_view text, Behaviour& behaviour) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) return false;
    for (const Setting& setting : Settings) {
        if (setting.name == text.substr(0, equals)) {
            return setting.read(text.substr(equals + 1), behaviour);
        }
    }
    return false;
}

}  // namespace

bool ReadBehaviour(std::string_view text, Behaviour& behaviour, std::string& wrong) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n;"), text.size());
        const std::string_view setting = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!setting.empty() && !ReadSetting(setting, behaviour)) {
            wrong = setting;
            return false;
        }
    }
    return true;
}

}  // namespace SampleGame
