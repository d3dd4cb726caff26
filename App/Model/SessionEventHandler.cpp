#include "App/Model/SessionEventHandler.h"

#include "App/Model/AppModel.h"
#include "App/System/ClosedLidController.h"

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
            // That the computer can go to sleep again holds no more.
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
        return model_.agentsFinished(notifier_);
    if (std::holds_alternative<end::Overheating>(end.reason)) {
        closedLid_.setRestoreNotBefore(tasks_.continuousNow() + overheatingRestoreDelay);
        playAlarm();
    }
    if (traits(end.reason).notifies)
        notifier_.postEnded(end);
    else
        notifier_.removeOfTheSession();
}

void SessionEventHandler::playAlarm()
{
    if (model_.playsHeatAlarm())
        alarm_.play({});
}

} // namespace vespra
