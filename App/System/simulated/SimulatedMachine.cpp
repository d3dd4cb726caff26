#include "App/System/simulated/SimulatedMachine.h"

#include "Core/Lifetime.h"

#include <algorithm>

namespace vespra {

std::expected<void, std::string> SimulatedMachine::set(const MachineSettings& settings)
{
    const auto change = changed(state_, settings);
    if (!change)
        return std::unexpected{change.error()};
    if (change->response)
        if (const auto can = canRespond(*change->response); !can)
            return can;
    set(change->state);
    if (change->sleepsNow) {
        notify(onSleep, true);
        notify(onSleep, false);
    }
    if (change->update)
        notify(onUpdate, *change->update);
    if (change->pressesShortcut)
        notify(onShortcut);
    return change->response ? respond(*change->response) : std::expected<void, std::string>{};
}

void SimulatedMachine::set(const MachineState& next)
{
    if (next == state_)
        return;
    state_ = next;
    for (const auto& listener : listeners_)
        listener();
}

std::uint32_t SimulatedMachine::hold(Assertion assertion)
{
    assertions_.emplace(++lastAssertion_, std::move(assertion));
    return lastAssertion_;
}

void SimulatedMachine::show(const ShownNotification& notification)
{
    withdraw(notification.identifier);
    notifications_.push_back(notification);
    notify(onNotification, notification);
}

void SimulatedMachine::withdraw(const std::string& identifier)
{
    std::erase_if(notifications_, [&](const auto& shown) { return shown.identifier == identifier; });
}

std::expected<void, std::string> SimulatedMachine::canRespond(const NotificationResponse& response) const
{
    const auto shown = std::ranges::find(notifications_, response.notification, &ShownNotification::identifier);
    if (shown == notifications_.end())
        return std::unexpected{"no notification \"" + response.notification + "\" is shown; nothing was changed"};
    const auto isMeant = [&](const NotificationAction& action) { return action.identifier == response.action; };
    if (!response.action.empty() && std::ranges::none_of(shown->actions, isMeant))
        return std::unexpected{"the notification \"" + response.notification + "\" has no button \"" + response.action
            + "\"; nothing was changed"};
    return {};
}

std::expected<void, std::string> SimulatedMachine::respond(const NotificationResponse& response)
{
    const auto can = canRespond(response);
    if (can) {
        withdraw(response.notification);
        notify(onResponse, response);
    }
    return can;
}

} // namespace vespra
