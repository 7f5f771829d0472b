#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/command_line.h"

using namespace Launcher;

namespace {

/// Ends the process, which is what the fuzzer takes for a finding.
void Demand(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text(data, data + size);

    const Switches switches = ReadSwitches(text);
    if (switches.autoQuitSeconds) Demand(*switches.autoQuitSeconds > 0.0);
    Demand(switches.simulation.on || (!switches.simulation.fail && !switches.simulation.cancel));

    const HandoffArgs handoff = ParseHandoffArgs(text);
    Demand(handoff.op == HandoffOperation::None || !handoff.target.empty());

    // A switch is found wherever it stands, and never loses one that was there.
    const Switches more = ReadSwitches(text + L" --nopatch --topmost");
    Demand(more.noPatch && more.topmost);
    Demand(more.checkOnly == switches.checkOnly && more.page == switches.page);
    return 0;
}
