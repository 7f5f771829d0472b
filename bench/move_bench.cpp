// One move of a folder, from a Windows path of the machine to another.
// usage: move_bench SOURCE DESTINATION
// Prints how many times progress was told, and the seconds between the first and the last time.

#include <chrono>
#include <cstdio>

#include "install/folder_move.h"
#include "platform/text.h"

using Clock = std::chrono::steady_clock;

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    int told = 0;
    Clock::time_point first;
    Clock::time_point last;
    Launcher::MoveHooks hooks;
    hooks.onProgress = [&](std::uint64_t, std::uint64_t) {
        last = Clock::now();
        if (told++ == 0) first = last;
    };
    Launcher::MoveResult result;
    const bool moved = Launcher::MoveInstallFolder(Platform::WideFromUtf8(argv[1]),
                                                   Platform::WideFromUtf8(argv[2]), hooks, result);
    std::printf("%d %.3f\n", told, std::chrono::duration<double>(last - first).count());
    if (!moved) std::fprintf(stderr, "move_bench: code %u\n", static_cast<unsigned>(result.code));
    return moved ? 0 : 1;
}
