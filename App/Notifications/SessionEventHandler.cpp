#include "App/Notifications/SessionEventHandler.h"

#include "App/Model/PanelFacts.h"
#include "App/System/ClosedLidController.h"
#include "App/Wording/AgentWording.h"

namespace vespra {

SessionEventHandler::SessionEventHandler(AppModel& model, ClosedLidController& closedLid, Platform& platform)
    : model_{model}
    , closedLid_{closedLid}
    , tasks_{*platform.time.tasks}
    , notifier_{*platform.notifications}
    , alarm_{*platform.alarm, *platform.time.tasks}
{
}

void SessionEventHandler::handle(const SessionEvent& event)
{
    match(
        event,
        [this](const event::Started&) {
            notifier_.requestAuthorizationIfNeeded();
            // Notifications of the previous session, such as that the computer may sleep again, are out of date.
            notifier_.removeOfTheSession();
        },
        [this](const event::Extended&) { notifier_.removeEndingSoon(); },
        [this](const event::EndingSoon& soon) { notifier_.postEndingSoon(soon.endsAt); },
        [this](const event::Ended& ended) { handleEnd(ended.end); },
        [this](const event::OverheatingWarning&) {
            notifier_.postHeatWarning();
            playAlarm();
        });
}

void SessionEventHandler::handleEnd(const SessionEnd& end)
{
    model_.sessionEnded();
    if (std::holds_alternative<end::AgentsFinished>(end.reason))
        return handleAgentsFinished();
    if (std::holds_alternative<end::Overheating>(end.reason)) {
        closedLid_.setRestoreNotBefore(tasks_.continuousNow() + overheatingRestoreDelay);
        playAlarm();
    }
    if (traits(end.reason).notifies)
        notifier_.postEnded(end);
    else
        notifier_.removeOfTheSession();
}

/// Starts the countdown to the action that follows the session, and tells the user.
void SessionEventHandler::handleAgentsFinished()
{
    const auto action = model_.endAction();
    model_.forcedEndAction().schedule(action, model_.coordinator().now());
    postAgentsFinished(action);
}

void SessionEventHandler::postAgentsFinished(AgentEndAction action)
{
    notifier_.postAgentsFinished(
        panelFacts::agentsFinishedTitle(model_), notificationBody(action), action != AgentEndAction::letSleep);
}

void SessionEventHandler::playAlarm()
{
    if (model_.playsHeatAlarm())
        alarm_.play({});
}

} // namespace vespra
