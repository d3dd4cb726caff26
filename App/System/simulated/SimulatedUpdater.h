#pragma once

#include "App/System/simulated/SimulatedMachine.h"
#include "App/System/Updater.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/WallClock.h"

#include <memory>

namespace vespra {

/// Finds the versions that come out on a simulated laptop. Its user looks at what is shown at once, and installs
/// nothing. Main thread only.
class SimulatedUpdater final : public Updater {
public:
    SimulatedUpdater(const std::shared_ptr<SimulatedMachine>& machine, const WallClock& clock);

    bool automaticallyChecks() const override { return checks_; }
    void setAutomaticallyChecks(bool checks) override { checks_ = checks; }
    bool automaticallyInstalls() const override { return installs_; }
    void setAutomaticallyInstalls(bool installs) override { installs_ = installs; }
    std::optional<Instant> lastCheck() const override { return lastCheck_; }
    void checkForUpdates() override;
    bool hasWindows() const override { return false; }

private:
    void check(bool isAskedFor);

    const WallClock& clock_;
    std::string newest_;
    bool checks_ = true;
    bool installs_ = false;
    std::optional<Instant> lastCheck_;
    Lifetime lifetime_;
};

} // namespace vespra
