#pragma once

#include <chrono>
#include <initializer_list>

#include "platform/host/descriptor.h"

namespace Server {

using Platform::Host::Descriptor;

/// A flag that any number of threads can wait for together with sockets. Once set it stays set.
class Event {
public:
    Event();
    void Set() const;
    int Fd() const { return descriptor_.Get(); }

private:
    Descriptor descriptor_;
};

/// What ended a wait.
enum class Woken { TimeOver, PeerLeft, Event };

/// Waits until the time is over, the peer of the socket has closed or reset its side, or one of
/// the events is set.
Woken WaitOnSocket(int socket, std::initializer_list<const Event*> events,
                   std::chrono::milliseconds time);

}  // namespace Server
