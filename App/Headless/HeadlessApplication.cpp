#include "App/Headless/HeadlessApplication.h"

#include "App/Headless/ExitStatus.h"
#include "App/Headless/SessionReport.h"
#include "App/Wording/AgentWording.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"
#include "HelperProtocol/Brand.h"

#include <cmath>
#include <cstdlib>

namespace vespra {

namespace {

    /// The component answers within this time, or the session starts without closed-lid mode.
    constexpr Seconds componentAnswerLimit = 3s;
    /// A machine that was too hot stays awake this long, so that the end can be noticed with the lid still shut.
    constexpr Seconds overheatingRestoreDelay = 3s;
    /// Time for the component to put the machine to sleep, or to be found unable to.
    constexpr Seconds forcedActionLimit = 30s;
    constexpr Seconds restoreLimit = 2s;

} // namespace

HeadlessApplication::HeadlessApplication(
    Platform& platform, const HeadlessOptions& options, TerminalOutput& output, std::function<void(int)> onFinish)
    : platform_{platform}
    , options_{options}
    , output_{output}
    , onFinish_{std::move(onFinish)}
    , coordinator_{options.settings,
          Calendar::current(),
          SessionEnvironment{
              .clock = *platform.time.clock,
              .scheduler = *platform.time.deadlines,
              .power = *platform.power,
              .thermal = *platform.thermal,
          },
          helper::NotInstalled{}}
{
}

HeadlessApplication::~HeadlessApplication() = default;

void HeadlessApplication::start()
{
    coordinator_.onEvent = lifetime_.guard([this](const SessionEvent& event) { follow(event); });
    followClosedLid();
    agentSocket_.emplace(Brand::agentSocketPath(),
        *platform_.time.mainLoop,
        *platform_.time.clock,
        lifetime_.guard([this](const AgentEvent& event) { receive(event); }));
    agentSocket_->start();
    followSystem();
    if (options_.isIdle)
        return;
    if (options_.preferences.options.closedLid)
        startOnceReady();
    else
        startSession();
}

void HeadlessApplication::followClosedLid()
{
    closedLid_.emplace(coordinator_,
        ClosedLidEnvironment{
            .service = *platform_.helper.service,
            .connect = platform_.helper.connect,
            .facts = *platform_.helper.facts,
            .power = *platform_.helper.power,
            .tasks = *platform_.time.tasks,
            .mainLoop = *platform_.time.mainLoop,
        });
    forcedEndAction_.emplace(*platform_.time.tasks);
    forcedEndAction_->perform = [this, perform = closedLid_->performer()](AgentEndAction action) {
        perform(action);
        finishAfter(forcedActionLimit);
    };
    if (!options_.preferences.options.closedLid)
        return;
    closedLidLoop_.emplace(*platform_.time.mainLoop, [this] {
        const auto status = coordinator_.closedLidStatus(true);
        if (coordinator_.state().isActive() && std::exchange(shownClosedLidStatus_, status) != status)
            output_.printLine(localized("Closed lid: %1", {message(status)}));
    });
}

/// Whether closed-lid mode blocks a start is known only when the component has answered.
void HeadlessApplication::startOnceReady()
{
    const auto start = lifetime_.guard([this] {
        startLimit_.reset();
        readinessLoop_.reset();
        startSession();
    });
    startLimit_ = platform_.time.tasks->schedule(componentAnswerLimit, start);
    readinessLoop_.emplace(*platform_.time.mainLoop, [this, start] {
        if (isReady(coordinator_.conditions().helper))
            startLimit_ = platform_.time.tasks->schedule(0s, start);
    });
}

void HeadlessApplication::followSystem()
{
    platform_.sleep->onWillSleep = lifetime_.guard([this] { coordinator_.systemWillSleep(); });
    coordinator_.updateLid(platform_.lid->isClosedWithoutExternalDisplay());
    platform_.lid->onChange = lifetime_.guard([this](bool closed) { coordinator_.updateLid(closed); });

    assertions_.emplace(localized("%1: keeping the Mac awake", {Brand::appName()}),
        Brand::appBundleID(),
        PowerAssertionController::System{
            .assertions = *platform_.assertions,
            .display = *platform_.display,
            .lid = *platform_.lid,
            .tasks = *platform_.time.tasks,
        });
    assertionLoop_.emplace(*platform_.time.mainLoop, [this] {
        platform_.session->sessionRuns(coordinator_.state().isActive());
        assertions_->apply(coordinator_.requirements());
    });
    if (output_.isTerminal())
        liveLoop_.emplace(*platform_.time.mainLoop, [this] { drawLive(); });
}

void HeadlessApplication::startSession()
{
    platform_.session->refresh();
    const auto& preferences = options_.preferences;
    if (preferences.mode == SessionMode::agent)
        agentCondition_
            = std::make_shared<AgentEndCondition>(agents_, coordinator_.settings().agents, *platform_.time.clock);
    const auto started = coordinator_.start(
        preferences.plan(coordinator_.settings().agentSafetyCap), preferences.options, agentCondition_);
    if (started)
        return;
    output_.printLine(message(started.error()));
    finish(ExitStatus::refused);
}

void HeadlessApplication::receive(const AgentEvent& event)
{
    if (const char* trace = std::getenv("VESPRA_TRACE_AGENTS"); trace && std::string_view{trace} == "1")
        std::fprintf(stderr,
            "agent-event %s %s %s %s\n",
            std::string{rawValue(event.agent)}.c_str(),
            std::string{rawValue(event.signal)}.c_str(),
            event.sessionID.c_str(),
            event.cwd.value_or("-").c_str());
    agents_.record(event);
}

void HeadlessApplication::follow(const SessionEvent& event)
{
    const auto* ended = std::get_if<event::Ended>(&event);
    if (ended)
        output_.showLive({});
    output_.printLine(reportLine(event));
    if (ended)
        followEnd(ended->end.reason);
}

void HeadlessApplication::followEnd(const EndReason& reason)
{
    const auto action = coordinator_.settings().agents.endAction;
    if (std::holds_alternative<end::Overheating>(reason)) {
        closedLid_->setRestoreNotBefore(platform_.time.tasks->continuousNow() + overheatingRestoreDelay);
        finishAfter(overheatingRestoreDelay);
    } else if (std::holds_alternative<end::AgentsFinished>(reason) && action != AgentEndAction::letSleep) {
        output_.printLine(notificationBody(action));
        forcedEndAction_->schedule(action, coordinator_.now());
    } else {
        finish(ExitStatus::done);
    }
}

void HeadlessApplication::terminate()
{
    forcedEndAction_->cancel();
    if (coordinator_.state().isActive())
        coordinator_.stop(end::AppTerminated{});
    else
        finish(ExitStatus::done);
}

void HeadlessApplication::finishAfter(Seconds delay)
{
    delayedFinish_ = platform_.time.tasks->schedule(delay, lifetime_.guard([this] { finish(ExitStatus::done); }));
}

void HeadlessApplication::finish(int exitStatus)
{
    if (liveLoop_)
        liveLoop_->stop();
    nextSecond_.reset();
    if (assertionLoop_)
        assertionLoop_->stop();
    platform_.session->sessionRuns(false);
    closedLid_->restoreBeforeQuit(restoreLimit);
    if (assertions_)
        assertions_->apply(PowerRequirements::none());
    notify(onFinish_, exitStatus);
}

void HeadlessApplication::drawLive()
{
    nextSecond_.reset();
    const auto* session = coordinator_.state().activeSession();
    if (!session)
        return output_.showLive({});
    const auto now = coordinator_.now();
    output_.showLive(liveLine(*session, now, agentCondition_.get(), agents_));

    // Just past the next full second of what is counted, so that no second is shown twice or left out.
    constexpr Seconds past{0.02};
    const double counted = session->remaining(now).value_or(-session->elapsed(now)).count();
    const Seconds toNext{counted - std::floor(counted)};
    nextSecond_ = platform_.time.tasks->schedule(toNext + past, lifetime_.guard([this] { drawLive(); }));
}

} // namespace vespra
