#include "App/System/linux/X11.h"

#include <cstdlib>
#include <xcb/dpms.h>
#include <xcb/screensaver.h>

namespace vespra {

namespace {

    bool has(xcb_connection_t* connection, xcb_extension_t& extension)
    {
        const auto* data = xcb_get_extension_data(connection, &extension);
        return data && data->present;
    }

    bool isInEnvironment(const char* variable)
    {
        const auto* value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): nothing changes the environment
        return value && *value;
    }

} // namespace

bool isWaylandSession() { return isInEnvironment("WAYLAND_DISPLAY"); }

bool isX11Session() { return !isWaylandSession() && isInEnvironment("DISPLAY"); }

XcbConnection connectToX11()
{
    const auto* display = std::getenv("DISPLAY");
    if (!display || !*display)
        return {};
    XcbConnection connection{xcb_connect(nullptr, nullptr)};
    if (xcb_connection_has_error(connection.get()))
        connection.reset();
    return connection;
}

void X11ScreenSaver::hold(const std::string&)
{
    isWanted_ = true;
    verify();
}

void X11ScreenSaver::drop()
{
    isWanted_ = false;
    connection_.reset();
}

void X11ScreenSaver::verify()
{
    if (connection_ && xcb_connection_has_error(connection_.get()))
        connection_.reset();
    if (!isWanted_ || connection_)
        return;
    connection_ = connectToX11();
    if (!connection_ || !has(connection_.get(), xcb_screensaver_id))
        return;
    xcb_discard_reply(connection_.get(), xcb_screensaver_query_version(connection_.get(), 1, 1).sequence);
    xcb_screensaver_suspend(connection_.get(), 1);
    xcb_flush(connection_.get());
}

std::optional<X11Dpms> X11Dpms::open()
{
    auto connection = connectToX11();
    if (!connection || !has(connection.get(), xcb_dpms_id))
        return {};
    const auto capable = owned(xcb_dpms_capable_reply(connection.get(), xcb_dpms_capable(connection.get()), nullptr));
    if (!capable || !capable->capable)
        return {};
    return X11Dpms{std::move(connection)};
}

void X11Dpms::force(bool on)
{
    xcb_dpms_enable(connection_.get()); // a level cannot be forced while it is disabled
    xcb_dpms_force_level(connection_.get(), on ? XCB_DPMS_DPMS_MODE_ON : XCB_DPMS_DPMS_MODE_OFF);
    xcb_flush(connection_.get());
}

bool X11Dpms::isOn() const
{
    const auto info = owned(xcb_dpms_info_reply(connection_.get(), xcb_dpms_info(connection_.get()), nullptr));
    return !info || !info->state || info->power_level == XCB_DPMS_DPMS_MODE_ON;
}

} // namespace vespra
