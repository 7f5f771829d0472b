#include "progress.h"

#include <array>
#include <cstdio>
#include <unistd.h>

namespace Publish {

namespace {

constexpr std::chrono::milliseconds TerminalPause{100};
constexpr std::chrono::seconds LinePause{5};

}  // namespace

Progress::Progress(std::string what, std::uint64_t filesTotal)
    : what_(std::move(what)),
      filesTotal_(filesTotal),
      isTerminal_(::isatty(STDERR_FILENO) == 1),
      due_(start_ + std::chrono::seconds(1)) {}

Progress::~Progress() {
    if (shown_ && isTerminal_) std::fputs("\r\033[K", stderr);
}

void Progress::AddBytes(std::uint64_t bytes) {
    const std::lock_guard guard(mutex_);
    bytes_ += bytes;
    ShowWhenDue();
}

void Progress::AddFile() {
    const std::lock_guard guard(mutex_);
    ++files_;
    ShowWhenDue();
}

void Progress::ShowWhenDue() {
    const auto now = Clock::now();
    if (now < due_) return;
    if (isTerminal_) {
        due_ = now + TerminalPause;
    } else {
        due_ = now + LinePause;
    }
    shown_ = true;
    const std::chrono::duration<double> elapsed = now - start_;
    const auto speed = static_cast<std::uint64_t>(static_cast<double>(bytes_) / elapsed.count());
    std::fprintf(stderr, "%s%s: %llu of %llu files, %s read, %s/s%s", isTerminal_ ? "\r" : "",
                 what_.c_str(), static_cast<unsigned long long>(files_),
                 static_cast<unsigned long long>(filesTotal_), Megabytes(bytes_).c_str(),
                 Megabytes(speed).c_str(), isTerminal_ ? "\033[K" : "\n");
    std::fflush(stderr);
}

std::string Megabytes(std::uint64_t bytes) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.1f MB", static_cast<double>(bytes) / 1e6);
    return text.data();
}

}  // namespace Publish
