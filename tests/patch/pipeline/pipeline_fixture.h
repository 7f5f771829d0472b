#pragma once

#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "patch/patch_pipeline.h"
#include "patch/wrapped.h"
#include "support/test_folder.h"
#include "support/test_server.h"

namespace Launcher {

/// How GoogleTest shows a state.
inline void PrintTo(State state, std::ostream* out) {
    *out << StateName(state);
}

/// A pipeline over a folder of the machine and the server beside the test.
class PipelineTest : public testing::Test {
protected:
    PipelineTest();

    /// Serves bytes at a path.
    static void Serve(std::string_view path, std::string_view bytes);
    /// Serves a file of the game, and enters it in the list.
    void Publish(std::string_view name, std::string_view payload);
    /// The same with a payload that is made of so many pieces and may be of any size.
    void PublishLarge(std::string_view name, const std::string& piece, std::size_t pieces);
    /// Enters a line in the list, which is served at the next Begin.
    void List(std::string_view line) { list_ += std::string(line) + "\n"; }
    void ClearList() { list_.clear(); }

    void Begin(bool repair = false);
    /// Ticks until the condition holds.
    void TickUntil(const std::function<bool()>& condition);
    /// Ticks to the end of the pass that has begun, and returns the states it went through.
    std::vector<State> Finish();
    std::vector<State> Run(bool repair = false);

    const PatchProgress& Progress() const { return pipeline_.Progress(); }
    /// The files of the game that the server was asked for since Begin, as their URLs name them.
    std::vector<std::string> Fetched() const;
    bool WasRequested(const std::string& path) const { return log_->Count("GET /" + path) > 0; }

    TestFolder folder_;
    PatchPipeline pipeline_;

private:
    void ListFile(std::string_view name, std::string_view payload);

    std::string list_;
    std::optional<TestServer::LogMark> log_;
};

}  // namespace Launcher
