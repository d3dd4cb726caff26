#pragma once

// App/Model: the one object that views read, what the user chose and its storage, and the facts that the panel shows.

#include "App/Agents/AgentIntegration.h"
#include "App/Agents/AgentWatch.h"
#include "App/Agents/ForcedEndAction.h"
#include "App/LoginItem/LoginItem.h"
#include "App/Model/RunningCommands.h"
#include "App/Model/SessionShortcut.h"
#include "App/Model/SettingsTab.h"
#include "App/Model/UserDefaults.h"
#include "App/System/Platform.h"
#include "App/Updates/AppUpdates.h"
#include "Core/Agents/AgentEndCondition.h"
#include "Core/Observation/ObservedClock.h"
#include "Core/Session/SessionCoordinator.h"
#include "Core/Session/SessionPreferences.h"

namespace vespra {

class ClosedLidController;

/// Where the model gets its readings and keeps what the user chose.
struct AppEnvironment {
    /// Outlives the model.
    Platform& platform;
    /// Outlives the model; null: nothing is kept.
    UserDefaults* defaults;
    /// Absolute paths.
    std::filesystem::path home;
    std::filesystem::path supportDirectory;
    /// Both outlive the model. Agents are real on a simulated laptop too.
    AgentFiles& agentFiles = systemAgentFiles();
    AgentProcesses& agentProcesses = systemAgentProcesses();
};

/// The one object that every view reads: it owns the session and its companions, and what the user prefers. An
/// observation loop follows everything that it reads here. Main thread only.
class AppModel {
public:
    /// Reads what is kept, once.
    explicit AppModel(const AppEnvironment& environment);
    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    SessionCoordinator& coordinator() { return coordinator_; }
    const SessionCoordinator& coordinator() const { return coordinator_; }
    AgentTracker& agents() { return agents_; }
    const AgentTracker& agents() const { return agents_; }
    /// What agents report comes in here.
    AgentWatch& agentWatch() { return agentWatch_; }
    const AgentWatch& agentWatch() const { return agentWatch_; }
    AgentIntegration& agentIntegration() { return agentIntegration_; }
    const AgentIntegration& agentIntegration() const { return agentIntegration_; }
    ForcedEndAction& forcedEndAction() { return forcedEndAction_; }
    const ForcedEndAction& forcedEndAction() const { return forcedEndAction_; }
    RunningCommands& commands() { return commands_; }
    /// `vespractl run` keeps the session going.
    bool isCommandRunning() const { return commands_.isAnyRunning(); }
    LoginItem& loginItem() { return loginItem_; }
    AppUpdates& updates() { return updates_; }
    SessionShortcut& sessionShortcut() { return sessionShortcut_; }
    const SessionShortcut& sessionShortcut() const { return sessionShortcut_; }
    PlatformKind platformKind() const { return environment_.platform.kind; }
    UserDefaults* store() const { return environment_.defaults; }

    /// The end condition of the running agent session; null otherwise.
    const std::shared_ptr<AgentEndCondition>& agentCondition() const { return agentCondition_.get(); }

    /// This agent session is to end without its forced action.
    bool skipsForcedActionThisSession() const { return skipsForcedActionThisSession_.get(); }
    void setSkipsForcedActionThisSession(bool skips) { skipsForcedActionThisSession_.set(skips); }

    /// The date, for what shows passing seconds.
    const ObservedClock& clock() const { return clock_; }

    SettingsTab settingsTab() const { return settingsTab_.get(); }
    void setSettingsTab(SettingsTab tab) { settingsTab_.set(tab); }

    // Setters store the value at once, even if it is unchanged.
    const SessionPreferences& preferences() const { return preferences_.get(); }
    void setPreferences(const SessionPreferences& preferences);
    /// Whether an alarm sounds when the machine is hot.
    bool playsHeatAlarm() const { return playsHeatAlarm_.get(); }
    void setPlaysHeatAlarm(bool plays);
    bool showsRemainingTimeInMenuBar() const { return showsRemainingTimeInMenuBar_.get(); }
    void setShowsRemainingTimeInMenuBar(bool shows);
    /// For this run only: what is kept stays as it was.
    void setFlagsOfThisRun(bool playsHeatAlarm, bool showsRemainingTimeInMenuBar);
    /// Takes effect at once, also on a running session, and is kept; what else was given for this run only is not.
    /// `change` is carried out on the settings in force and on those that are kept.
    void changeSettings(const std::function<void(SessionSettings&)>& change);

    /// Starts a session from the preferences. In agent mode only with a connected agent; a refusal changes nothing.
    void start();
    /// The same for this time, from other preferences than those that are kept.
    void start(const SessionPreferences& preferences);
    /// The same, also where no agent is connected: who asks for that in a terminal may run the hooks by other means.
    void startUnconnected(const SessionPreferences& preferences);
    /// Stops the session that runs, or starts one; shows the panel if the start was blocked.
    void toggleSession();

    /// Both are those of the running session, else those for the next one.
    bool keepsDisplayAwake() const;
    bool isClosedLidOn() const;
    void setKeepsDisplayAwake(bool keeps);
    /// A running session may refuse; then nothing changes but `closedLidToggleRefusal`.
    void setClosedLid(bool enabled);
    /// Why the last try to switch closed-lid mode on during a session was refused.
    const std::optional<StartRefusal>& closedLidToggleRefusal() const { return closedLidToggleRefusal_.get(); }

    /// Carries out closed-lid mode, tells of the component and sets it up; null before launch.
    const std::shared_ptr<ClosedLidController>& closedLid() const { return closedLid_.get(); }
    /// Works with this model's coordinator.
    void setClosedLidController(std::shared_ptr<ClosedLidController> controller)
    {
        closedLid_.set(std::move(controller));
    }

    /// A session runs on a hot machine, and the heat will not end it.
    bool isRunningHot() const;
    /// The preferences ask for agents and none is connected.
    bool needsAgentConnection() const { return needsAgentConnection(preferences()); }
    bool needsAgentConnection(const SessionPreferences& preferences) const;

    /// The last end that the user has dismissed; absent before the first.
    const std::optional<SessionEnd>& dismissedEnd() const { return dismissedEnd_.get(); }
    /// Hides the notice of the end that is shown; the next end is shown again.
    void dismissEnd();

    /// What follows when the agents end this session: the action of the settings, unless this session is to skip it or
    /// a command still runs.
    AgentEndAction endAction() const;
    /// Some session has ended.
    void sessionEnded() { agentCondition_.set(nullptr); }

    /// Opens the settings window, at a page or where it was. Empty where there is none.
    std::function<void(std::optional<SettingsTab>)> showSettings;
    /// Opens the panel. Empty where there is none.
    std::function<void()> showPanel;

private:
    void refreshClosedLid();

    AppEnvironment environment_;
    SessionCoordinator coordinator_;
    AgentIntegration agentIntegration_;
    LoginItem loginItem_;
    AppUpdates updates_;
    SessionShortcut sessionShortcut_;
    AgentTracker agents_;
    AgentWatch agentWatch_;
    ForcedEndAction forcedEndAction_;
    ObservedClock clock_;
    RunningCommands commands_{*this};
    SessionSettings keptSettings_;
    Observed<std::shared_ptr<AgentEndCondition>> agentCondition_;
    Observed<bool> skipsForcedActionThisSession_;
    Observed<SettingsTab> settingsTab_{SettingsTab::agent};
    Observed<SessionPreferences> preferences_;
    Observed<bool> playsHeatAlarm_;
    Observed<bool> showsRemainingTimeInMenuBar_;
    Observed<std::optional<StartRefusal>> closedLidToggleRefusal_;
    Observed<std::optional<SessionEnd>> dismissedEnd_;
    Observed<std::shared_ptr<ClosedLidController>> closedLid_;
};

} // namespace vespra
