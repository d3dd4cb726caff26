#include "App/Panel/linux/Compositing.h"

#include <QGuiApplication>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace vespra::compositing {

namespace {

    struct Free {
        void operator()(void* reply) const { std::free(reply); }
    };

    /// The compositor owns the selection of this name.
    xcb_atom_t managerSelection(xcb_connection_t* connection)
    {
        static const auto selection = [connection]() -> xcb_atom_t {
            constexpr auto* name = "_NET_WM_CM_S0";
            const auto request = xcb_intern_atom(connection, 0, static_cast<uint16_t>(std::strlen(name)), name);
            const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply{
                xcb_intern_atom_reply(connection, request, nullptr)};
            return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
        }();
        return selection;
    }

} // namespace

bool isRunning()
{
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return false;
    auto* connection = x11->connection();
    const auto request = xcb_get_selection_owner(connection, managerSelection(connection));
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner{
        xcb_get_selection_owner_reply(connection, request, nullptr)};
    return owner && owner->owner != XCB_WINDOW_NONE;
}

} // namespace vespra::compositing
