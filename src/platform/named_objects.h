#pragma once

#include <cstdint>
#include <string>

#include "platform/error.h"

/// Objects that processes of one session share by name ("Local\..."). An object lives as long as
/// somebody holds it, and vanishes with its last holder, also when that one is killed.
/// Names are case-sensitive and at most 260 characters (NameTooLong). Mutexes and events share
/// their names: InvalidHandle for one that stands as the other kind. An object of these classes is
/// used by one thread at a time.
namespace Platform {

/// Only its existence counts; nobody owns it.
class NamedMutex {
public:
    NamedMutex() = default;
    ~NamedMutex() { Close(); }
    NamedMutex(const NamedMutex&) = delete;
    NamedMutex& operator=(const NamedMutex&) = delete;

    /// Holds the mutex, made or opened. existed tells whether it stood before.
    [[nodiscard]] Error Create(const std::wstring& name, bool& existed);
    bool IsOpen() const { return handle_ != 0; }
    void Close();

private:
    std::intptr_t handle_ = 0;
};

/// What a handle on an event is asked for. Bits that can be joined.
enum EventRight : unsigned { EventWait = 1, EventModify = 2 };

/// A manual-reset event: once set it stays set until it is reset.
class NamedEvent {
public:
    NamedEvent() = default;
    ~NamedEvent() { Close(); }
    NamedEvent(const NamedEvent&) = delete;
    NamedEvent& operator=(const NamedEvent&) = delete;

    /// Makes the event, not set, or opens the one that stands and leaves its state alone.
    [[nodiscard]] Error Create(const std::wstring& name, bool& existed);
    /// FileNotFound when there is none. rights are EventRight bits, no more than the caller needs:
    /// another program's event may refuse the rest. IsSet waits, Set and Reset modify: without the
    /// right the one is false and the others AccessDenied.
    [[nodiscard]] Error Open(const std::wstring& name, unsigned rights = EventWait | EventModify);
    bool IsOpen() const { return handle_ != 0; }
    [[nodiscard]] Error Set();
    [[nodiscard]] Error Reset();
    /// Looks without waiting.
    bool IsSet() const;
    void Close();

private:
    std::intptr_t handle_ = 0;
};

}  // namespace Platform
