#pragma once

#include <sys/types.h>

#include "platform/processes.h"

namespace Platform::Host {

/// What a program gets as standard input, output and error; negative for its starter's own.
struct StandardStreams {
    int input = -1;
    int output = -1;
    int error = -1;
};

/// Starts a program of the machine as StartProcess does, in a session of its own. It is a child of
/// this process, which has to wait for it.
[[nodiscard]] Error StartProgram(const ProcessStart& start, const StandardStreams& streams,
                                 pid_t& child);

}  // namespace Platform::Host
