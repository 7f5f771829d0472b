#pragma once

#include <atomic>
#include <functional>
#include <stop_token>
#include <thread>

namespace Launcher {

/// A thread that does one task at a time for its owner, who polls for the end and joins. All calls
/// come from the owner's thread. The destructor requests a stop and waits.
class Worker {
public:
    enum class Status { Idle, Running, Done, Failed };
    /// Returns whether it succeeded; a task that throws has failed.
    using Task = std::function<bool(std::stop_token)>;

    /// The worker has to be idle.
    void Start(Task task);
    Status Poll() const { return status_; }
    void RequestStop() { thread_.request_stop(); }
    /// Waits for the task's end, and is idle afterwards.
    void Join();

private:
    std::atomic<Status> status_ = Status::Idle;
    std::jthread thread_;
};

}  // namespace Launcher
