#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace Publish {

/// Tells how far long work is, on the standard error: a line kept up to date on a terminal, a line
/// every few seconds elsewhere, nothing for short work. Any thread.
class Progress {
public:
    Progress(std::string what, std::uint64_t filesTotal);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    void AddBytes(std::uint64_t bytes);
    void AddFile();

private:
    using Clock = std::chrono::steady_clock;

    void ShowWhenDue();

    const std::string what_;
    const std::uint64_t filesTotal_;
    const bool isTerminal_;
    const Clock::time_point start_ = Clock::now();
    std::mutex mutex_;
    Clock::time_point due_;  ///< guarded by mutex_, as is what follows
    std::uint64_t files_ = 0;
    std::uint64_t bytes_ = 0;
    bool shown_ = false;
};

/// "145.2 MB"
std::string Megabytes(std::uint64_t bytes);

}  // namespace Publish
