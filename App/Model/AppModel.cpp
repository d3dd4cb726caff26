#include "App/Model/AppModel.h"

#include "App/Model/PanelFacts.h"
#include "App/Model/PreferencesStore.h"
#include "App/System/ClosedLidController.h"

#include <algorithm>

namespace vespra {

AppModel::AppModel(const AppEnvironment& environment)
    : environment_{environment}
    , coordinator_{PreferencesStore::loadSettings(environment.defaults),
          Calendar::current(),
          SessionEnvironment{
              .clock = *environment.platform.time.clock,
              .scheduler = *environment.platform.time.deadlines,
              .power = *environment.platform.power,
              .thermal = *environment.platform.thermal,
          },
          helper::NotInstalled{}}
    , agentIntegration_{environment.home, environment.supportDirectory}
    , loginItem_{environment.platform.login.get()}
    , updates_{environment.platform.updater.get()}
    , sessionShortcut_{*environment.platform.shortcut, environment.defaults}
    , agentWatch_{agents_,
          AgentWatch::System{
              .files = environment.agentFiles,
              .processes = environment.agentProcesses,
              .clock = *environment.platform.time.clock,
              .tasks = *environment.platform.time.tasks,
          }}
    , forcedEndAction_{*environment.platform.time.tasks, *environment.platform.time.clock}
    , clock_{*environment.platform.time.clock, *environment.platform.time.tasks}
    , keptSettings_{coordinator_.settings()}
    , preferences_{PreferencesStore::load(environment.defaults)}
    , playsHeatAlarm_{PreferencesStore::playsHeatAlarm(environment.defaults)}
    , showsRemainingTimeInMenuBar_{PreferencesStore::showsRemainingTimeInMenuBar(environment.defaults)}
{
    loginItem_.refresh();
}

void AppModel::setPreferences(const SessionPreferences& preferences)
{
    preferences_.set(preferences);
    PreferencesStore::save(preferences, store());
}

void AppModel::setPlaysHeatAlarm(bool plays)
{
    playsHeatAlarm_.set(plays);
    PreferencesStore::setPlaysHeatAlarm(plays, store());
}

void AppModel::setShowsRemainingTimeInMenuBar(bool shows)
{
    showsRemainingTimeInMenuBar_.set(shows);
    PreferencesStore::setShowsRemainingTimeInMenuBar(shows, store());
}

void AppModel::setFlagsOfThisRun(bool playsHeatAlarm, bool showsRemainingTimeInMenuBar)
{
    playsHeatAlarm_.set(playsHeatAlarm);
    showsRemainingTimeInMenuBar_.set(showsRemainingTimeInMenuBar);
}

void AppModel::changeSettings(const std::function<void(SessionSettings&)>& change)
{
    auto inForce = coordinator_.settings();
    change(inForce);
    coordinator_.setSettings(inForce);
    change(keptSettings_);
    PreferencesStore::saveSettings(keptSettings_, store());
}

void AppModel::start() { start(preferences()); }

void AppModel::start(const SessionPreferences& preferences)
{
    if (!needsAgentConnection(preferences))
        startUnconnected(preferences);
}

void AppModel::startUnconnected(const SessionPreferences& preferences)
{
    // A start during a session must not touch what belongs to that session.
    if (coordinator_.state().isActive())
        return;
    environment_.platform.session->refresh();
    const auto plan = preferences.plan(coordinator_.settings().agentSafetyCap);
    skipsForcedActionThisSession_.set(false);
    forcedEndAction_.cancel();
    agentCondition_.set(preferences.mode == SessionMode::agent
            ? std::make_shared<AgentEndCondition>(
                  agents_, coordinator_.settings().agents, *environment_.platform.time.clock, &agentWatch_)
            : nullptr);
    if (!coordinator_.start(plan, preferences.options, agentCondition_.get()))
        agentCondition_.set(nullptr);
    else if (preferences.options.closedLid)
        refreshClosedLid();
}

/// The obstacle to closed-lid mode may have gone since the last look.
void AppModel::refreshClosedLid()
{
    if (const auto& controller = closedLid())
        controller->refreshUnlessReady();
}

void AppModel::toggleSession()
{
    if (coordinator_.state().isActive())
        return coordinator_.stop(end::StoppedByUser{});
    start();
    if (!coordinator_.state().isActive())
        notify(showPanel);
}

bool AppModel::keepsDisplayAwake() const
{
    const auto* session = coordinator_.state().activeSession();
    return (session ? session->options : preferences().options).keepsDisplayAwake;
}

bool AppModel::isClosedLidOn() const
{
    const auto* session = coordinator_.state().activeSession();
    return (session ? session->options : preferences().options).closedLid;
}

void AppModel::setKeepsDisplayAwake(bool keeps)
{
    auto next = preferences();
    next.options.keepsDisplayAwake = keeps;
    setPreferences(next);
    coordinator_.setKeepsDisplayAwake(keeps);
    commands_.userChose(&SessionOptions::keepsDisplayAwake);
}

void AppModel::setClosedLid(bool enabled)
{
    closedLidToggleRefusal_.set({});
    if (coordinator_.state().isActive())
        if (const auto changed = coordinator_.setClosedLid(enabled); !changed)
            return closedLidToggleRefusal_.set(changed.error());
    auto next = preferences();
    next.options.closedLid = enabled;
    setPreferences(next);
    commands_.userChose(&SessionOptions::closedLid);
    if (enabled)
        refreshClosedLid();
}

bool AppModel::isRunningHot() const
{
    return coordinator_.state().isActive() && coordinator_.conditions().thermal >= ThermalLevel::serious
        && !coordinator_.requirements().disablesSystemSleep;
}

bool AppModel::needsAgentConnection(const SessionPreferences& preferences) const
{
    using Connection = HookSettingsFile::Connection;
    return preferences.mode == SessionMode::agent
        && std::ranges::none_of(
            agentIntegration_.connections(), [](const auto& agent) { return agent.second == Connection::connected; });
}

void AppModel::dismissEnd()
{
    if (const auto end = panelFacts::visibleGuardrailEnd(*this))
        dismissedEnd_.set(end);
}

AgentEndAction AppModel::endAction() const
{
    // A command that still runs must not be cut off by a sleep or a shutdown.
    const bool isSkipped = skipsForcedActionThisSession() || commands_.isAnyRunning();
    return isSkipped ? AgentEndAction::letSleep : coordinator_.settings().agents.endAction;
}

} // namespace vespra
