#pragma once

#include "Core/Scheduling/Instant.h"

#include <functional>
#include <optional>
#include <string>

namespace vespra {

/// Looks for new versions of the application and installs them, with windows of its own; it keeps what is set here, and
/// reports its errors in its windows. Main thread only.
class Updater {
public:
    virtual ~Updater() = default;

    virtual bool automaticallyChecks() const = 0;
    virtual void setAutomaticallyChecks(bool checks) = 0;
    virtual bool automaticallyInstalls() const = 0;
    virtual void setAutomaticallyInstalls(bool installs) = 0;
    /// Absent before the first check.
    virtual std::optional<Instant> lastCheck() const = 0;
    /// Checks, and shows the user what comes of it.
    virtual void checkForUpdates() = 0;

    /// An update is about to be shown: its version, as users read it, and whether the user has asked for the check.
    std::function<void(const std::string& version, bool isAskedFor)> onWillShowUpdate;
    /// The user looks at the update, or the updater is done with it.
    std::function<void()> onUpdateSeen;
    /// A check is over, with whatever result.
    std::function<void()> onCycleFinished;
};

} // namespace vespra
