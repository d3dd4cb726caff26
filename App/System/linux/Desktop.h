#pragma once

#include <QString>
#include <QStringList>

namespace vespra::desktop {

/// Whether the user's desktop goes by `name`, such as "KDE".
inline bool isCurrent(const char* name)
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':').contains(QLatin1String{name});
}

} // namespace vespra::desktop
