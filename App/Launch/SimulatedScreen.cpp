#include "App/Launch/SimulatedScreen.h"

#include "App/System/simulated/SimulatedMachine.h"
#include "App/Wording/Localized.h"

namespace vespra::simulatedScreen {

namespace {

    std::string noteLine(const SimulatedMachine::ShownNotification& notification)
    {
        auto line = localized("Notification \"%1\": %2", {notification.title, notification.body});
        for (const auto& action : notification.actions)
            line += " [" + action.title + "]";
        return line;
    }

} // namespace

void follow(Platform& platform, std::function<void(const std::string&)> print)
{
    if (platform.machine)
        platform.machine->onNotification
            = [print = std::move(print)](const SimulatedMachine::ShownNotification& shown) { print(noteLine(shown)); };
}

} // namespace vespra::simulatedScreen
