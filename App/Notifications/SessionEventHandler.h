#pragma once

// App/Notifications: what follows the session's events: notifications and the heat alarm.

#include "App/Notifications/HeatAlarm.h"
#include "App/Notifications/SessionNotifier.h"
#include "App/System/Platform.h"
#include "Core/Session/AgentPolicy.h"
#include "Core/Session/SessionEvent.h"

namespace vespra {

class AppModel;
class ClosedLidController;

/// Acts on the session's events: schedules what follows an agent session, posts notifications, sounds the alarm, and
/// delays the end of closed-lid mode until the alarm has been heard. Main thread only.
class SessionEventHandler {
public:
    /// How long a closed machine that was too hot stays awake, so that the alarm can be heard.
    static constexpr Seconds overheatingRestoreDelay = 3s;

    /// All of them outlive it.
    SessionEventHandler(AppModel& model, ClosedLidController& closedLid, Platform& platform);

    SessionNotifier& notifier() { return notifier_; }

    void handle(const SessionEvent& event);
    /// Tells the user what follows the agents' session.
    void postAgentsFinished(AgentEndAction action);

private:
    void handleEnd(const SessionEnd& end);
    void handleAgentsFinished();
    void playAlarm();

    AppModel& model_;
    ClosedLidController& closedLid_;
    TaskScheduling& tasks_;
    SessionNotifier notifier_;
    HeatAlarm alarm_;
};

} // namespace vespra
