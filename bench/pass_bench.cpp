// One pass of the patch pipeline, driven at the pace of the launcher's state loop.
// usage: pass_bench BASE_URL INSTALL_FOLDER [pass|repair] [COMMAND]
// COMMAND runs just before Compare, outside its time, to bring the disk's cache into a known state.
// Prints a line for each state when it ends: its name, and how many seconds and processor seconds
// it took (on Windows, where clock() tells the time of day, seconds again). The last line is the
// state that the pass ended in, with its error text.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>
#include <thread>

#include "patch/patch_pipeline.h"
#include "platform/text.h"

using Clock = std::chrono::steady_clock;

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    Launcher::PatchPipeline pipeline;
    pipeline.Configure(argv[1], Platform::WideFromUtf8(argv[2]));
    pipeline.Begin(argc > 3 && argv[3] == std::string_view("repair"));
    const char* beforeCompare = argc > 4 ? argv[4] : nullptr;

    Launcher::State state = pipeline.Progress().state;
    std::clock_t usedBefore = std::clock();
    for (Clock::time_point began = Clock::now(); Launcher::IsPatching(state);) {
        const Launcher::State next = pipeline.Tick();
        if (next == state) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            continue;
        }
        const Clock::time_point now = Clock::now();
        const std::clock_t used = std::clock();
        std::printf("%s %.6f %.6f\n", Launcher::StateName(state),
                    std::chrono::duration<double>(now - began).count(),
                    static_cast<double>(used - usedBefore) / CLOCKS_PER_SEC);
        state = next;
        if (state == Launcher::State::Compare && beforeCompare != nullptr &&
            std::system(beforeCompare) != 0) {
            std::puts("the command before Compare failed");
            return 1;
        }
        began = Clock::now();
        usedBefore = std::clock();
    }
    std::printf("%s %s\n", Launcher::StateName(state),
                Platform::Utf8FromWide(pipeline.Progress().errorText).c_str());
    return state == Launcher::State::Ready ? 0 : 1;
}
