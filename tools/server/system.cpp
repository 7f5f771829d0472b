#include "system.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace Server {

Event::Event() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!descriptor_) throw std::system_error(errno, std::generic_category(), "eventfd");
}

void Event::Set() const {
    const std::uint64_t one = 1;
    // A full counter means that the event is set already.
    [[maybe_unused]] const auto written = ::write(descriptor_.Get(), &one, sizeof one);
}

Woken WaitOnSocket(int socket, std::initializer_list<const Event*> events,
                   std::chrono::milliseconds time) {
    using Clock = std::chrono::steady_clock;
    std::vector<pollfd> watched = {{socket, POLLRDHUP, 0}};
    for (const Event* event : events)
        watched.push_back({event->Fd(), POLLIN, 0});

    const bool limited = time < std::chrono::hours(24);
    const auto end = Clock::now() + (limited ? time : std::chrono::hours(24));
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        const int timeout = limited ? static_cast<int>(std::max<long>(left, 0)) : -1;
        const int count = ::poll(watched.data(), watched.size(), timeout);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return Woken::TimeOver;
        if (watched.front().revents != 0) return Woken::PeerLeft;
        return Woken::Event;
    }
}

}  // namespace Server
