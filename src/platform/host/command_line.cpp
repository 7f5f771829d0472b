#include "platform/host/command_line.h"

#include <algorithm>

namespace Platform::Host {

namespace {

constexpr std::string_view Blanks = " \t";

bool IsBlank(char character) {
    return Blanks.find(character) != std::string_view::npos;
}

std::string_view SkipBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(Blanks), text.size()));
    return text;
}

/// Takes the program's name, quotes left out, from the front of the line.
std::string TakeProgramName(std::string_view& line) {
    std::string name;
    bool quoted = false;
    std::size_t at = 0;
    for (; at < line.size() && (quoted || !IsBlank(line[at])); ++at) {
        if (line[at] == '"') {
            quoted = !quoted;
        } else {
            name += line[at];
        }
    }
    line.remove_prefix(at);
    return name;
}

std::string TakeArgument(std::string_view& line) {
    std::string argument;
    bool quoted = false;
    std::size_t at = 0;
    while (at < line.size() && (quoted || !IsBlank(line[at]))) {
        const std::size_t begin = at;
        while (at < line.size() && line[at] == '\\')
            ++at;
        const std::size_t backslashes = at - begin;
        if (at == line.size() || line[at] != '"') {
            argument.append(backslashes, '\\');
            if (backslashes == 0) argument += line[at++];
            continue;
        }
        argument.append(backslashes / 2, '\\');
        if (backslashes % 2 == 1) {
            argument += '"';
        } else if (quoted && at + 1 < line.size() && line[at + 1] == '"') {
            argument += '"';
            ++at;
        } else {
            quoted = !quoted;
        }
        ++at;
    }
    line.remove_prefix(at);
    return argument;
}

std::string Quote(const std::string& argument) {
    if (!argument.empty() && std::none_of(argument.begin(), argument.end(), IsBlank)) {
        return argument;
    }
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    const std::size_t value = equals == std::string::npos ? 0 : equals + 1;
    return argument.substr(0, value) + '"' + argument.substr(value) + '"';
}

}  // namespace

std::vector<std::string> SplitCommandLine(std::string_view line) {
    std::vector<std::string> arguments{TakeProgramName(line)};
    for (line = SkipBlanks(line); !line.empty(); line = SkipBlanks(line)) {
        arguments.push_back(TakeArgument(line));
    }
    return arguments;
}

std::string_view SkipProgramName(std::string_view line) {
    TakeProgramName(line);
    return SkipBlanks(line);
}

std::string JoinArguments(const std::vector<std::string>& arguments) {
    std::string line;
    for (const std::string& argument : arguments) {
        if (!line.empty()) line += ' ';
        line += Quote(argument);
    }
    return line;
}

}  // namespace Platform::Host
