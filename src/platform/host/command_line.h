#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Command lines as Windows knows them: one text for the whole line. Pure functions.
namespace Platform::Host {

/// The variable through which the starter hands the whole line to the program it starts, in
/// UTF-8. The program's entry takes it out of the environment.
inline constexpr const char* CommandLineVariable = "TOLVAN_COMMAND_LINE";

/// Splits a line as the runtime of a Windows program does: the program's name first (quotes
/// around it count, backslashes are plain), then arguments between blanks and tabs, with quotes,
/// doubled quotes inside quotes, and backslashes before quotes.
std::vector<std::string> SplitCommandLine(std::string_view line);

/// What stands behind the program's name and the blanks after it.
std::string_view SkipProgramName(std::string_view line);

/// The line, without a program's name, for arguments that did not come as one: an argument with
/// a blank, and an empty one, is put in quotes, and in --name=value only the value is, which is
/// how this product writes its switches.
std::string JoinArguments(const std::vector<std::string>& arguments);

}  // namespace Platform::Host
