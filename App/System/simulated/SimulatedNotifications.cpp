#include "App/System/simulated/SimulatedNotifications.h"

#include <algorithm>

namespace vespra {

SimulatedNotifications::SimulatedNotifications(std::shared_ptr<SimulatedMachine> machine)
    : machine_{std::move(machine)}
{
    machine_->onResponse
        = lifetime_.guard([this](const NotificationResponse& response) { notify(onResponse, response); });
}

void SimulatedNotifications::setCategories(std::vector<NotificationCategory> categories)
{
    categories_ = std::move(categories);
}

void SimulatedNotifications::post(const UserNotification& notification)
{
    const auto category = std::ranges::find(categories_, notification.category, &NotificationCategory::identifier);
    machine_->show({.identifier = notification.identifier,
        .title = notification.title,
        .body = notification.body,
        .actions = category == categories_.end() ? std::vector<NotificationAction>{} : category->actions});
}

void SimulatedNotifications::removeDelivered(const std::vector<std::string>& identifiers)
{
    for (const auto& identifier : identifiers)
        machine_->withdraw(identifier);
}

SimulatedAlarm::SimulatedAlarm(std::shared_ptr<SimulatedMachine> machine, MainLoop& mainLoop, TaskScheduling& tasks)
    : machine_{std::move(machine)}
    , mainLoop_{mainLoop}
    , tasks_{tasks}
{
}

void SimulatedAlarm::play(std::function<void()> completion)
{
    stop();
    completion_ = std::move(completion);
    machine_->soundAlarm();
    end_ = tasks_.schedule(length, [this] { stop(); });
}

void SimulatedAlarm::stop()
{
    if (std::exchange(end_, nullptr))
        mainLoop_.post(lifetime_.guard([completion = std::exchange(completion_, nullptr)] { notify(completion); }));
}

} // namespace vespra
