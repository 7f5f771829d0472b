#include "common/worker.h"

#include <exception>

namespace Launcher {

void Worker::Start(Task task) {
    const auto run = [this, task = std::move(task)](const std::stop_token& stop) {
        bool succeeded = false;
        try {
            succeeded = task(stop);
        } catch (const std::exception&) {
            // Out of memory, as a rule. The owner sees a failure.
        }
        status_ = succeeded ? Status::Done : Status::Failed;
    };
    status_ = Status::Running;
    try {
        thread_ = std::jthread(run);
    } catch (const std::exception&) {
        status_ = Status::Failed;
    }
}

void Worker::Join() {
    if (thread_.joinable()) thread_.join();
    status_ = Status::Idle;
}

}  // namespace Launcher
