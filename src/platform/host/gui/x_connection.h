#pragma once

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace Platform::Host {

/// Owner of what XCB allocates: replies and events.
struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using XReply = std::unique_ptr<T, FreeReply>;

/// A connection to the X server of its own: errors on it concern nobody else, and unlike those on
/// the window library's they do not end the program.
class XConnection {
public:
    XConnection() : connection_(xcb_connect(nullptr, &screenNumber_)) {}
    ~XConnection() { xcb_disconnect(connection_); }
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    xcb_connection_t* Get() const { return connection_; }
    bool IsBroken() const { return xcb_connection_has_error(connection_) != 0; }
    const xcb_screen_t* Screen() const;
    /// The visual with an alpha channel; 0 when the screen has none.
    xcb_visualid_t AlphaVisual() const;
    /// Whether a program blends the windows' pixels together.
    bool HasCompositor() const;
    /// Waits until the server has done everything so far.
    void Synchronise() const;

private:
    int screenNumber_ = 0;
    xcb_connection_t* connection_;
};

}  // namespace Platform::Host
