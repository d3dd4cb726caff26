#pragma once

#include "App/System/DisplayControl.h"
#include "App/System/LidMonitoring.h"
#include "App/System/PowerAssertionBackend.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/TaskScheduling.h"
#include "Core/Session/PowerRequirements.h"
#include "Log/SystemLog.h"

#include <memory>
#include <optional>

namespace vespra {

/// Turns the session's requirements into assertions and display actions. `disablesSystemSleep` is left to the
/// ClosedLidController. Main thread only.
class PowerAssertionController {
public:
    /// What it works with; all of it outlives it.
    struct System {
        PowerAssertionBackend& assertions;
        DisplayControl& display;
        const LidMonitoring& lid;
        TaskScheduling& tasks;
    };

    /// `name` is what the system shows as the reason; `subsystem` is that of the log.
    PowerAssertionController(std::string name, const std::string& subsystem, System system);
    /// Ends the activity; assertions still held are left to the system, which drops them with the process.
    ~PowerAssertionController();
    PowerAssertionController(const PowerAssertionController&) = delete;
    PowerAssertionController& operator=(const PowerAssertionController&) = delete;

    /// May be called with the same value any number of times: only what is missing is tried again.
    void apply(const PowerRequirements& requirements);

private:
    /// Waits so long after the display came on under a closed lid, before turning it off again.
    static constexpr Seconds turnOffAgainDelay = 2s;

    void applyActivity(bool wanted);
    std::optional<std::uint32_t> reconcile(std::optional<std::uint32_t> current, bool wanted, PowerAssertionType type);
    void applyDisplayOff(bool turnsOff);
    void turnDisplayOff();
    void wakeDisplay();
    void screensDidWake();

    std::string name_;
    SystemLog log_;
    System system_;
    std::optional<std::uint32_t> systemAssertion_;
    std::optional<std::uint32_t> displayAssertion_;
    bool hasActivity_ = false;
    bool turnsDisplayOff_ = false;
    std::unique_ptr<ScheduledTask> turnOffAgainTask_;
    Lifetime lifetime_;
};

} // namespace vespra
