#include "support/display.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace TestSupport {

Display::Display() {
    // The server tells through the pipe which number it took, a line, once it can be used.
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    std::string words[] = {"Xvfb", "-displayfd", "3", "-noreset",   "-nolisten",
                           "tcp",  "-screen",    "0", "1024x768x24"};
    char* arguments[std::size(words) + 1] = {};
    for (std::size_t index = 0; index < std::size(words); ++index) {
        arguments[index] = words[index].data();
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 3);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t server = 0;
    EXPECT_EQ(posix_spawnp(&server, "Xvfb", &actions, nullptr, arguments, environ), 0);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    std::string number;
    for (char digit = 0; read(ends[0], &digit, 1) == 1 && digit != '\n';)
        number += digit;
    close(ends[0]);
    EXPECT_FALSE(number.empty()) << "Xvfb did not start";
    setenv("DISPLAY", (":" + number).c_str(), 1);
    server_ = server;
}

Display::~Display() {
    unsetenv("DISPLAY");
    kill(static_cast<pid_t>(server_), SIGKILL);
    waitpid(static_cast<pid_t>(server_), nullptr, 0);
}

}  // namespace TestSupport
