#pragma once

#include "App/System/linux/DBus.h"

namespace vespra::logind {

inline dbus::Target manager()
{
    return {QStringLiteral("org.freedesktop.login1"),
        QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager")};
}

} // namespace vespra::logind
