#include "core/move_flow.h"

#include <atomic>

#include "common/boot_log.h"
#include "common/worker.h"
#include "core/globals.h"
#include "core/handoff_flow.h"
#include "core/run.h"
#include "install/path_resolution.h"
#include "install/relocation.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/text.h"

namespace Launcher {

namespace {

struct Move {
    MoveState state = MoveState::None;
    std::wstring destination;
    std::atomic<std::uint64_t> bytesDone = 0;
    std::atomic<std::uint64_t> filesDone = 0;
    MoveResult result;  ///< the worker's until it has ended
    Worker worker;      ///< last, so that it ends before what it uses
};
Move g_move;

bool RunsFrom(const std::wstring& folder) {
    const std::wstring own = Platform::OwnPath();
    std::wstring final;
    return IsSameOrInside(own, folder) ||
           (Platform::Succeeded(Platform::GetFinalPath(folder, final)) &&
            IsSameOrInside(own, final));
}

void StartMove(const std::wstring& source, const std::wstring& destination) {
    if (g_move.state == MoveState::Moving) return;
    g_move.state = MoveState::Moving;
    g_move.destination = destination;
    g_move.bytesDone = g_move.filesDone = 0;
    g_move.worker.Start([source, destination](const std::stop_token& stop) {
        MoveHooks hooks;
        hooks.isCancelled = [&] { return stop.stop_requested(); };
        hooks.onProgress = [](std::uint64_t bytes, std::uint64_t files) {
            g_move.bytesDone = bytes;
            g_move.filesDone = files;
        };
        return MoveInstallation(source, destination, hooks, g_move.result);
    });
}

void TellHandoffFailed(const std::wstring& reason) {
    BootLog("move: handoff FAILED, refusing to move from inside the folder");
    if (!reason.empty()) BootLog("move: told -- " + Platform::Utf8FromWide(reason));
    g_move.state = MoveState::Failed;
}

void LogResult(const MoveResult& result) {
    std::wstring where = result.blockingPath + result.copyMismatch + result.leftoverFolder;
    if (!where.empty()) where.insert(0, L" -- ");
    BootLogF("move: %s, code %u, error %u, copy %u%s",
             g_move.state == MoveState::Done ? "done" : "FAILED",
             static_cast<unsigned>(result.code), result.win32Error, result.copyResult,
             Platform::Utf8FromWide(where).c_str());
}

}  // namespace

void BeginMove(const std::wstring& destination, bool sub, WindowPosition position) {
    if (!RunsFrom(g_installDir)) {
        return StartMove(g_installDir, ResolveRelocateTarget(destination, sub));
    }
    BootLog("move: handing off to a copy outside the install folder");
    HandoffRequest request;
    request.op = HandoffOperation::Move;
    request.target = g_installDir;
    request.dest = destination;
    request.sub = sub;
    request.position = position;
    BeginHandoff(request, TellHandoffFailed);
}

void ContinueMove(const HandoffArgs& handoff) {
    StartMove(handoff.target, ResolveRelocateTarget(handoff.dest, handoff.sub));
}

void FollowMove() {
    const Worker::Status status = g_move.worker.Poll();
    if (status == Worker::Status::Idle || status == Worker::Status::Running) return;
    g_move.worker.Join();
    const bool succeeded = status == Worker::Status::Done;
    g_move.state = succeeded ? MoveState::Done : MoveState::Failed;
    LogResult(g_move.result);
    // The records point at the copy as soon as that is whole, whatever became of the old folder.
    if (!succeeded && g_move.result.code != MoveCode::LeftBehind) return;
    g_installDir = g_move.destination;
    ConfigurePatch();
}

MoveProgress GetMoveProgress() {
    MoveProgress progress;
    progress.state = g_move.state;
    progress.bytesDone = g_move.bytesDone;
    progress.filesDone = g_move.filesDone;
    if (g_move.state != MoveState::Moving) progress.result = g_move.result;
    return progress;
}

void StopMove() {
    g_move.worker.Join();
}

}  // namespace Launcher
