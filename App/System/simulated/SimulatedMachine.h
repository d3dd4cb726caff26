#pragma once

#include "App/System/simulated/MachineState.h"
#include "App/System/UserNotificationCenter.h"

#include <cstdint>
#include <functional>
#include <map>

namespace vespra {

/// A laptop in memory, steered by hand. Main thread only.
class SimulatedMachine {
public:
    /// Something that keeps the machine awake: "PreventUserIdleSystemSleep", "activity", and the reason given for it.
    struct Assertion {
        std::string type;
        std::string name;
        bool operator==(const Assertion&) const = default;
    };
    /// A notification on its screen.
    struct ShownNotification {
        std::string identifier;
        std::string title;
        std::string body;
        std::vector<NotificationAction> actions;
        bool operator==(const ShownNotification&) const = default;
    };

    const MachineState& state() const { return state_; }
    MachineSettings get() const { return machineSettings(state_); }
    /// Changes all of `settings` and tells the listeners; or fails with a sentence and changes nothing.
    std::expected<void, std::string> set(const MachineSettings& settings);
    void set(const MachineState& next);

    std::uint32_t hold(Assertion assertion);
    void release(std::uint32_t id) { assertions_.erase(id); }
    const std::map<std::uint32_t, Assertion>& assertions() const { return assertions_; }

    /// Shows it in the place of one with its identifier.
    void show(const ShownNotification& notification);
    void withdraw(const std::string& identifier);
    /// In the order in which they came.
    const std::vector<ShownNotification>& notifications() const { return notifications_; }
    /// The user clicks a notification, or a button of it, and it goes. Fails with a sentence if that is not shown.
    std::expected<void, std::string> respond(const NotificationResponse& response);
    /// Called with each notification that is shown.
    std::function<void(const ShownNotification&)> onNotification;
    /// Called with what the user does.
    std::function<void(const NotificationResponse&)> onResponse;

    void soundAlarm() { ++alarms_; }
    /// How often the alarm has sounded.
    int alarms() const { return alarms_; }

    /// Called with each version of the application that comes out.
    std::function<void(const std::string& version)> onUpdate;

    /// Called when the keys of the global shortcuts have been pressed and released.
    std::function<void()> onShortcut;

    /// Called after every change of the state; for as long as the machine is there.
    void onChange(std::function<void()> listener) { listeners_.push_back(std::move(listener)); }
    /// Called with true when the machine goes to sleep and with false when it wakes up.
    std::function<void(bool sleeps)> onSleep;

private:
    std::expected<void, std::string> canRespond(const NotificationResponse& response) const;

    MachineState state_;
    std::map<std::uint32_t, Assertion> assertions_;
    std::uint32_t lastAssertion_ = 0;
    std::vector<ShownNotification> notifications_;
    int alarms_ = 0;
    std::vector<std::function<void()>> listeners_;
};

} // namespace vespra
