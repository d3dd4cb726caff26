#include "App/Headless/HeadlessApplication.h"

#include "App/Launch/ExitStatus.h"
#include "App/Launch/SimulatedScreen.h"
#include "App/Model/PanelFacts.h"
#include "App/Wording/AgentWording.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionReport.h"
#include "App/Wording/SessionWording.h"
#include "ControlProtocol/EndStatus.h"

namespace vespra {

namespace {

    /// Time for the component to put the machine to sleep, or to be found unable to.
    constexpr Seconds forcedActionLimit = 30s;

} // namespace

HeadlessApplication::HeadlessApplication(AppDelegate& application, Platform& platform, const LaunchOptions& options,
    TerminalOutput& output, std::function<void(int)> onFinish)
    : application_{application}
    , platform_{platform}
    , isIdle_{options.isIdle}
    , session_{application, platform, options}
    , output_{output}
    , onFinish_{std::move(onFinish)}
    , exitStatus_{ExitStatus::done}
{
}

HeadlessApplication::~HeadlessApplication() = default;

void HeadlessApplication::start()
{
    application_.onEvent = lifetime_.guard([this](const SessionEvent& event) { follow(event); });
    application_.didFinishLaunching();
    session_.onNote = [this](const std::string& text) { complain(text); };
    session_.onRefusal = [this](const std::string& reason) { refuse(reason); };
    session_.applySettings();
    followForcedAction();
    simulatedScreen::follow(platform_, lifetime_.guard([this](const std::string& line) { output_.printNote(line); }));
    if (output_.isTerminal())
        liveLoop_.emplace(*platform_.time.mainLoop, [this] { drawLive(); });
    if (isIdle_)
        return;
    if (session_.preferences().options.closedLid)
        followClosedLid();
    session_.start();
}

void HeadlessApplication::followForcedAction()
{
    auto& action = model().forcedEndAction();
    action.perform = [this, perform = action.perform](AgentEndAction what) {
        notify(perform, what);
        finishAfter(forcedActionLimit);
    };
    action.onCancel = [this, onCancel = action.onCancel] {
        notify(onCancel);
        finishAfter(0s);
    };
}

void HeadlessApplication::followClosedLid()
{
    closedLidLoop_.emplace(*platform_.time.mainLoop, [this] {
        const auto status = model().coordinator().closedLidStatus(true);
        if (model().coordinator().state().isActive() && std::exchange(shownClosedLidStatus_, status) != status)
            output_.printLine(localized("Closed lid: %1", {message(status)}));
    });
}

void HeadlessApplication::complain(const std::string& text) { output_.printNote(programName + (": " + text)); }

void HeadlessApplication::refuse(const std::string& reason)
{
    if (!reason.empty())
        complain(reason);
    exitStatus_ = ExitStatus::refused;
    finish();
}

void HeadlessApplication::follow(const SessionEvent& event)
{
    // A finish that was scheduled for the previous session must not end this one.
    if (std::holds_alternative<event::Started>(event)) {
        delayedFinish_.reset();
        exitStatus_ = ExitStatus::done;
    }
    const auto* ended = std::get_if<event::Ended>(&event);
    if (ended)
        output_.showLive({});
    output_.printLine(reportLine(event));
    if (!ended || isFinished_)
        return;
    const auto& reason = ended->end.reason;
    exitStatus_ = traits(reason).isGuardrail ? controlProtocol::exitStatusOfEnd(caseName(reason)) : ExitStatus::done;
    if (const auto& pending = model().forcedEndAction().pending())
        output_.printLine(notificationBody(pending->action));
    else if (std::holds_alternative<end::Overheating>(reason))
        finishAfter(SessionEventHandler::overheatingRestoreDelay);
    else
        finishAfter(0s);
}

void HeadlessApplication::finishAfter(Seconds delay)
{
    if (!isIdle_)
        delayedFinish_ = platform_.time.tasks->schedule(delay, lifetime_.guard([this] { finish(); }));
}

void HeadlessApplication::finish()
{
    if (std::exchange(isFinished_, true))
        return;
    if (liveLoop_)
        liveLoop_->stop();
    model().forcedEndAction().cancel();
    application_.shouldTerminate();
    application_.willTerminate();
    notify(onFinish_, exitStatus_);
}

void HeadlessApplication::drawLive()
{
    const auto* session = model().coordinator().state().activeSession();
    if (!session)
        return output_.showLive({});
    const auto now = model().clock().now(panelFacts::clockAnchor(*session));
    output_.showLive(liveLine(*session, now, model().agentCondition().get(), model().agents()));
}

} // namespace vespra
