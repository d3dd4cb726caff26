#pragma once

#include "App/System/HelperConnection.h"
#include "App/System/HelperService.h"
#include "App/System/MachineFacts.h"
#include "App/System/simulated/SimulatedHelperMode.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainLoop.h"

#include <set>

namespace vespra {

/// A privileged component in memory, with its registration and the machine it is on. Main thread only.
class SimulatedHelper final : public HelperService, public MachineFacts {
public:
    using Mode = SimulatedHelperMode;

    explicit SimulatedHelper(MainLoop& mainLoop, Mode mode = Mode::ready);
    ~SimulatedHelper() override;

    Mode mode() const { return mode_; }
    /// A component that becomes unreachable loses its connections, and with them the override.
    void setMode(Mode mode);

    /// Called when the application has changed the mode, by registering the component or removing it.
    std::function<void()> onModeChange;

    /// Some connection holds the override.
    bool isSleepDisabled() const { return !leases_.empty(); }
    /// Takes the override back behind the application's back, as an expired lease does.
    void expireLeases() { leases_.clear(); }

    /// What `sleepNow` and `shutDown` do to the machine.
    std::function<void()> onSleep;
    std::function<void()> onShutDown;

    /// To be used while the component exists; its connections may outlive it, and are unreachable then.
    HelperConnector connector();

    void registerService(std::function<void(std::expected<void, std::string>)> done) override;
    void unregisterService(std::function<void(std::expected<void, std::string>)> done) override;
    void status(std::function<void(HelperServiceStatus)> answer) override;
    void openSettings() override { }
    void read(std::function<void(Reading)> answer) override;

private:
    class Connection;

    bool isReachable() const;
    void answerRegistration(std::function<void(std::expected<void, std::string>)> done);
    std::expected<HelperRefusal, HelperUnreachable> change(const std::function<void()>& make);

    MainLoop& mainLoop_;
    Mode mode_;
    std::set<Connection*> connections_;
    std::set<const Connection*> leases_;
    Lifetime lifetime_;
};

} // namespace vespra
