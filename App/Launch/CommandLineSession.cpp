#include "App/Launch/CommandLineSession.h"

#include "App/Model/ModelSettings.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"
#include "HelperProtocol/Brand.h"

namespace vespra {

namespace {

    /// The component answers within this time, or the session starts without closed-lid mode.
    constexpr Seconds componentAnswerLimit = 3s;

} // namespace

CommandLineSession::CommandLineSession(AppDelegate& application, Platform& platform, const LaunchOptions& options)
    : application_{application}
    , platform_{platform}
    , options_{options}
{
}

UserSettings CommandLineSession::settings()
{
    auto settings = settingsOf(model());
    if (options_.settings) {
        settings.session = {};
        settings = settingTexts::changed(settings, *options_.settings);
    }
    return settings;
}

SessionPreferences CommandLineSession::preferences() { return options_.session.applied(settings().preferences); }

void CommandLineSession::applySettings()
{
    auto given = settings();
    auto& grace = given.session.agents.graceDelay;
    grace = options_.grace.value_or(grace);
    model().coordinator().setSettings(given.session);
    model().setFlagsOfThisRun(given.playsHeatAlarm, given.showsRemainingTimeInMenuBar);
    model().sessionShortcut().setForThisRun(given.toggleSessionKeys);
}

void CommandLineSession::start()
{
    if (preferences().options.closedLid)
        startOnceReady();
    else
        startNow();
}

/// Whether closed-lid mode blocks a start is known only when the component has answered.
void CommandLineSession::startOnceReady()
{
    const auto start = lifetime_.guard([this] {
        startLimit_.reset();
        readinessLoop_.reset();
        startNow();
    });
    startLimit_ = platform_.time.tasks->schedule(componentAnswerLimit, start);
    readinessLoop_.emplace(*platform_.time.mainLoop, [this, start] {
        if (!application_.closedLid().isSettling())
            startLimit_ = platform_.time.tasks->schedule(0s, start);
    });
}

void CommandLineSession::startNow()
{
    const auto wanted = preferences();
    if (wanted.mode == SessionMode::agent && !application_.isListeningToAgents())
        return notify(onRefusal, localized("No agent can report: %1 cannot be made.", {Brand::agentSocketPath()}));
    if (model().needsAgentConnection(wanted))
        notify(onNote,
            localized("No agent is connected: only hooks of your own will report. "
                      "\"vespractl hooks connect\" connects one."));
    model().startUnconnected(wanted);
    if (model().coordinator().state().isActive())
        return;
    const auto refusal = model().coordinator().refusal(wanted.options);
    notify(onRefusal, refusal ? message(*refusal) : std::string{});
}

} // namespace vespra
