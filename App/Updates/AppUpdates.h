#pragma once

// App/Updates: what the application shows of its updater.

#include "App/System/Updater.h"
#include "Core/Lifetime.h"
#include "Core/Observation/Observed.h"

namespace vespra {

/// What the application shows of its updater, and hears from it. Main thread only.
class AppUpdates {
public:
    /// `updater` outlives it; null: this installation gets new versions by other means, and nothing here does anything.
    explicit AppUpdates(Updater* updater);
    AppUpdates(const AppUpdates&) = delete;
    AppUpdates& operator=(const AppUpdates&) = delete;

    bool isAvailable() const { return updater_ != nullptr; }

    bool automaticallyChecks() const { return automaticallyChecks_.get(); }
    void setAutomaticallyChecks(bool checks);
    bool automaticallyInstalls() const { return automaticallyInstalls_.get(); }
    void setAutomaticallyInstalls(bool installs);
    /// Absent before the first check.
    std::optional<Instant> lastCheck() const { return lastCheck_.get(); }

    /// The user has asked, so its windows, or `state`, tell what comes of it.
    void checkForUpdates();
    /// Whether the updater shows all of that in windows of its own. Then `state` stays idle.
    bool hasWindows() const { return updater_ && updater_->hasWindows(); }
    UpdateState state() const { return updater_ ? updater_->state() : UpdateState{}; }
    /// Fetches the version that is available, if it has to, and hands it to the system, which asks the user.
    void install();
    /// Ends a check or a download that is under way.
    void cancel();

    /// A check that nobody asked for has found this version.
    std::function<void(const std::string& version)> onUpdateFound;
    /// The user has seen it, or it is no longer to be seen.
    std::function<void()> onUpdateSeen;

private:
    void read();

    Updater* updater_;
    Observed<bool> automaticallyChecks_{false};
    Observed<bool> automaticallyInstalls_{false};
    Observed<std::optional<Instant>> lastCheck_;
    Lifetime lifetime_;
};

} // namespace vespra
