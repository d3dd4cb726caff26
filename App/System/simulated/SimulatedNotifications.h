#pragma once

#include "App/System/simulated/SimulatedMachine.h"
#include "App/System/SoundPlayer.h"
#include "Core/Lifetime.h"
#include "Core/Scheduling/MainLoop.h"
#include "Core/Scheduling/TaskScheduling.h"

#include <memory>

namespace vespra {

/// Shows notifications on a simulated laptop; its user answers them. Main thread only.
class SimulatedNotifications final : public UserNotificationCenter {
public:
    explicit SimulatedNotifications(std::shared_ptr<SimulatedMachine> machine);

    void setCategories(std::vector<NotificationCategory> categories) override;
    void requestAuthorization() override { }
    void post(const UserNotification& notification) override;
    void removeDelivered(const std::vector<std::string>& identifiers) override;

private:
    std::shared_ptr<SimulatedMachine> machine_;
    std::vector<NotificationCategory> categories_;
    Lifetime lifetime_;
};

/// Counts the alarms of a simulated laptop; each takes as long as a real one. Main thread only.
class SimulatedAlarm final : public SoundPlayer {
public:
    SimulatedAlarm(std::shared_ptr<SimulatedMachine> machine, MainLoop& mainLoop, TaskScheduling& tasks);

    void play(std::function<void()> completion) override;
    void stop() override;

private:
    static constexpr Seconds length = 1600ms;

    std::shared_ptr<SimulatedMachine> machine_;
    MainLoop& mainLoop_;
    TaskScheduling& tasks_;
    std::function<void()> completion_;
    std::unique_ptr<ScheduledTask> end_;
    Lifetime lifetime_;
};

} // namespace vespra
