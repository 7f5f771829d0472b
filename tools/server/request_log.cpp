#include "request_log.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace Server {

namespace {

std::string TimeStamp() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(
                                  now - std::chrono::system_clock::from_time_t(seconds))
                                  .count();
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    std::array<char, 32> date{};
    std::strftime(date.data(), date.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    const std::string fraction = std::to_string(1'000'000 + microseconds).substr(1);
    return std::string(date.data()) + "." + fraction + "Z";
}

}  // namespace

RequestLog::RequestLog(const std::string& path) {
    if (path.empty()) return;
    file_ = Descriptor(path == "-"
                           ? ::dup(STDOUT_FILENO)
                           : ::open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
    if (!file_) throw std::system_error(errno, std::generic_category(), path);
}

void RequestLog::Write(std::string_view event, std::string_view text) const {
    if (!file_) return;
    std::string line = TimeStamp();
    line.append(" ").append(event).append(" ").append(text);
    for (char& c : line) {
        if (static_cast<unsigned char>(c) < 0x20) c = '?';
    }
    line += '\n';
    // A log that cannot be written must not stop what is served.
    [[maybe_unused]] const auto written = ::write(file_.Get(), line.data(), line.size());
}

std::string RequestLog::Read(std::uint64_t from) const {
    std::string text;
    std::array<char, 65536> block{};
    while (file_) {
        const ssize_t count = ::pread(file_.Get(), block.data(), block.size(),
                                      static_cast<off_t>(from + text.size()));
        if (count <= 0) break;
        text.append(block.data(), static_cast<std::size_t>(count));
    }
    return text;
}

}  // namespace Server
