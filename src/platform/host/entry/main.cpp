#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "platform/entry.h"
#include "platform/host/command_line.h"
#include "platform/text.h"

namespace {

using Platform::Host::CommandLineVariable;

/// The line that the starter left for this process, taken out of the environment. A line that does
/// not belong to these arguments was meant for another program that passed its environment on.
std::optional<std::string> TakeStartersLine(const std::vector<std::string>& arguments) {
    const char* text = std::getenv(CommandLineVariable);
    if (text == nullptr) return std::nullopt;
    std::string line = text;
    unsetenv(CommandLineVariable);
    if (Platform::Host::SplitCommandLine(line) != arguments) return std::nullopt;
    return line;
}

}  // namespace

int main(int count, char** values) {
    const std::vector<std::string> arguments(values, values + count);
    const std::optional<std::string> given = TakeStartersLine(arguments);
    const std::string line =
        given ? std::string(Platform::Host::SkipProgramName(*given))
              : Platform::Host::JoinArguments({arguments.begin() + 1, arguments.end()});
    return ProgramMain(Platform::WideFromUtf8(line));
}
