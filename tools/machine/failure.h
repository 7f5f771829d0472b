#pragma once

#include <stdexcept>
#include <string>

#include "platform/error.h"

namespace MachineTool {

/// What a command throws when it cannot do what it was asked for: the text for the user, and the
/// exit code.
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& text, int exitCode = 1)
        : std::runtime_error(text), exitCode_(exitCode) {}
    Failure(const std::string& what, Platform::Error error, int exitCode = 1)
        : Failure(what + " (error " + std::to_string(Platform::Code(error)) + ")", exitCode) {}
    int ExitCode() const { return exitCode_; }

private:
    int exitCode_;
};

}  // namespace MachineTool
