#pragma once

#include "App/System/HelperConnection.h"
#include "App/System/HelperService.h"
#include "App/System/MachineFacts.h"
#include "Core/Lifetime.h"
#include "Core/RawValue.h"
#include "Core/Scheduling/MainLoop.h"

#include <set>

namespace vespra {

/// A privileged component in memory, with its registration and the machine it is on. Main thread only.
class SimulatedHelper final : public HelperService, public MachineFacts {
public:
    enum class Mode {
        ready,
        notInstalled,
        awaitingApproval,
        /// Registered, but cannot be reached.
        failed,
        noBuiltInDisplay,
        unsignedBuild,
        /// Answers, and refuses whatever would change anything.
        refusing,
        /// Speaks version 1.
        outdated,
        /// Takes requests and never answers.
        stuck,
    };

    explicit SimulatedHelper(MainLoop& mainLoop, Mode mode = Mode::ready);
    ~SimulatedHelper() override;

    Mode mode() const { return mode_; }
    /// A component that becomes unreachable loses its connections, and with them the override.
    void setMode(Mode mode);

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
    void status(std::function<void(HelperServiceStatus)> answer) override;
    void openSettings() override { }
    void read(std::function<void(Reading)> answer) override;

private:
    class Connection;

    bool isReachable() const;
    std::expected<HelperRefusal, HelperUnreachable> change(const std::function<void()>& make);

    MainLoop& mainLoop_;
    Mode mode_;
    std::set<Connection*> connections_;
    std::set<const Connection*> leases_;
    Lifetime lifetime_;
};

template <>
inline constexpr auto rawValues<SimulatedHelper::Mode> = RawValueTable<SimulatedHelper::Mode, 9>{{
    {SimulatedHelper::Mode::ready, "ready"},
    {SimulatedHelper::Mode::notInstalled, "notInstalled"},
    {SimulatedHelper::Mode::awaitingApproval, "awaitingApproval"},
    {SimulatedHelper::Mode::failed, "failed"},
    {SimulatedHelper::Mode::noBuiltInDisplay, "noBuiltInDisplay"},
    {SimulatedHelper::Mode::unsignedBuild, "unsignedBuild"},
    {SimulatedHelper::Mode::refusing, "refusing"},
    {SimulatedHelper::Mode::outdated, "outdated"},
    {SimulatedHelper::Mode::stuck, "stuck"},
}};

} // namespace vespra
