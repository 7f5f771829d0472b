#include <csignal>

#include "support/helper_process.h"

void TestSupport::KillProcess(std::uint32_t processId) {
    kill(static_cast<pid_t>(processId), SIGKILL);
}
