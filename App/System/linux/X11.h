#pragma once

#include "App/System/linux/Inhibition.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <xcb/xcb.h>

namespace vespra {

struct XcbDisconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using XcbConnection = std::unique_ptr<xcb_connection_t, XcbDisconnect>;

/// The user's session is a Wayland compositor's.
bool isWaylandSession();

/// The user's session is an X server's own. Under Wayland an X server is there too, but it has neither displays nor all
/// of the keyboard.
bool isX11Session();

/// Connects to the display of the environment; empty if there is none.
XcbConnection connectToX11();

struct XcbFree {
    void operator()(void* message) const { std::free(message); }
};
/// A reply, an event or an error, which the caller of xcb owns.
template <class Message> std::unique_ptr<Message, XcbFree> owned(Message* message)
{
    return std::unique_ptr<Message, XcbFree>{message};
}

/// Suspends the X server's own screen saver and screen blanking; ends with the connection.
class X11ScreenSaver final : public Inhibition {
public:
    void hold(const std::string& why) override;
    void drop() override;
    void verify() override;

private:
    bool isWanted_ = false;
    XcbConnection connection_;
};

/// The power state of an X server's displays.
class X11Dpms {
public:
    /// Absent where the server has no display, or displays that it cannot turn off.
    static std::optional<X11Dpms> open();

    void force(bool on);
    bool isOn() const;

private:
    explicit X11Dpms(XcbConnection connection)
        : connection_{std::move(connection)}
    {
    }

    XcbConnection connection_;
};

} // namespace vespra
