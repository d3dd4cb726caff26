#pragma once

#include "App/System/AppearanceMonitoring.h"
#include "App/System/linux/DBus.h"

namespace vespra {

/// The appearance as the desktop's settings portal has it; light while none answers. The first reading comes in a later
/// turn.
class PortalAppearance final : public AppearanceMonitoring {
public:
    PortalAppearance();

private:
    void refresh();
    void replied(const QDBusMessage& reply);

    dbus::Call pending_;
    dbus::SignalWatch signal_;
    dbus::NameWatch owner_;
};

} // namespace vespra
