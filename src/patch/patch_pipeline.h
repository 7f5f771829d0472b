#pragma once

#include <memory>
#include <string>
#include <vector>

#include "patch/patch_progress.h"

namespace Launcher {

/// Brings the installed game up to the server's list of files:
///
///     Manifest -> Parse -> Compare -> Ready
///                             |
///                             +-> Update -> Verify -> Ready
///
/// or ErrNetwork, ErrDownload, ErrFatal with a text. What takes long runs on one worker, and a step
/// only looks at how that is doing. A kill at any instant leaves each file the old or the new one.
///
/// Main thread. Nothing here throws, and only Shutdown and the destructor wait for the network.
class PatchPipeline {
public:
    PatchPipeline();
    ~PatchPipeline();
    PatchPipeline(const PatchPipeline&) = delete;
    PatchPipeline& operator=(const PatchPipeline&) = delete;

    /// baseUrl is the patch host's address in UTF-8, ending in "/". For the next pass.
    void Configure(std::string baseUrl, std::wstring installFolder);

    /// Begins a pass, in place of one that runs. A repair reads all of every file; a normal pass
    /// trusts what a wrapped file tells of itself. Deletes the old copies in the top of the install
    /// folder and looks which files there are. Refused, with a line in the log, while no install
    /// folder is configured.
    void Begin(bool repair);

    /// One step; returns the state after it.
    State Tick();

    /// Requests the stop of what runs. Does not wait: a worker that hangs on the network is joined
    /// when it has ended, and until then the next pass does not leave its first state.
    void Stop();

    /// Stops, and waits for the end. For teardown.
    void Shutdown();

    const PatchProgress& Progress() const { return progress_; }

private:
    struct Pass;

    bool ReapRetired();
    void Step();
    void TickManifest();
    void TickParse();
    void TickCompare();
    void TickUpdate();
    void TickVerify();
    void StartHashing(bool onlyMissing);
    void PublishHashing();
    void StartFetch();
    void PublishFetching();
    void FinishFetch();
    bool Compare();
    void Fail(State state, std::wstring text);

    std::string baseUrl_;
    std::wstring installFolder_;
    PatchProgress progress_;
    std::unique_ptr<Pass> pass_;
    std::vector<std::unique_ptr<Pass>> retired_;  ///< told to stop, not yet at their end
};

}  // namespace Launcher
