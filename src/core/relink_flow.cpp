#include "core/relink_flow.h"

#include <mutex>
#include <utility>

#include "common/boot_log.h"
#include "common/worker.h"
#include "core/globals.h"
#include "core/run.h"
#include "install/copy_search.h"
#include "install/path_rules.h"
#include "install/relocation.h"

namespace Launcher {

namespace {

struct Search {
    std::mutex lock;  ///< guards the two below
    std::vector<std::wstring> found;
    std::wstring visited;
    Worker worker;  ///< last, so that it ends before what it uses
};
Search g_search;

struct Relink {
    std::wstring folder;
    std::size_t deleted = 0;  ///< the worker's until it has ended
    Worker worker;
};
Relink g_relink;

/// Whether a task has just come to its end; the worker is idle then.
bool HasEnded(Worker& worker) {
    const Worker::Status status = worker.Poll();
    if (status == Worker::Status::Idle || status == Worker::Status::Running) return false;
    worker.Join();
    return true;
}

}  // namespace

void StartCopySearch() {
    if (IsSearchingCopies()) return;
    g_search.worker.Start([](const std::stop_token& stop) {
        FindInstalledCopies(
            [](const std::wstring& folder) {
                const std::scoped_lock lock(g_search.lock);
                g_search.visited = folder;
            },
            [](const std::wstring& folder) {
                const std::scoped_lock lock(g_search.lock);
                g_search.found.push_back(folder);
            },
            [&] { return stop.stop_requested(); });
        return true;
    });
}

void CancelCopySearch() {
    g_search.worker.RequestStop();
}

bool IsSearchingCopies() {
    return g_search.worker.Poll() != Worker::Status::Idle;
}

std::wstring SearchedFolder() {
    const std::scoped_lock lock(g_search.lock);
    return g_search.visited;
}

std::vector<std::wstring> TakeFoundCopies() {
    const std::scoped_lock lock(g_search.lock);
    return std::exchange(g_search.found, {});
}

void BeginRelink(const std::wstring& folder, bool deleteOthers, std::vector<std::wstring> others) {
    if (IsRelinking() || !IsSafeFolder(folder)) return;
    g_relink.folder = NormalisePath(folder);
    g_relink.worker.Start([folder = g_relink.folder, deleteOthers,
                           others = std::move(others)](const std::stop_token&) {
        g_relink.deleted = RelinkInstallation(folder, deleteOthers, others);
        return true;
    });
}

bool IsRelinking() {
    return g_relink.worker.Poll() != Worker::Status::Idle;
}

void FollowRelink() {
    if (HasEnded(g_search.worker)) BootLog("notfound: the search has ended");
    if (!HasEnded(g_relink.worker)) return;
    g_installDir = g_relink.folder;
    ConfigurePatch();
    BootLog("notfound: relinked");
}

std::size_t DeletedCopies() {
    return g_relink.deleted;
}

void StopRelink() {
    g_search.worker.RequestStop();
    g_search.worker.Join();
    g_relink.worker.Join();
}

}  // namespace Launcher
