#include "App/Model/NoticeFacts.h"

#include "App/Model/PanelFacts.h"
#include "App/Wording/AgentWording.h"
#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionWording.h"
#include "Core/Session/CountdownFormat.h"

#include <algorithm>

namespace vespra::panelFacts {

namespace {

    /// A time left as it is read aloud: a minute that has begun counts.
    std::string spokenLeft(Seconds left)
    {
        return Format::current().spokenDuration(std::chrono::ceil<std::chrono::minutes>(std::max(left, Seconds{})));
    }

    /// What will be done in truth: without the component there is no shutdown.
    AgentEndAction possible(const AppModel& model, AgentEndAction action)
    {
        const bool canShutDown = isReady(model.coordinator().conditions().helper);
        return action == AgentEndAction::shutDown && !canShutDown ? AgentEndAction::sleepNow : action;
    }

    Notice keptAwakeNotice(const AppModel& model)
    {
        const auto* session = model.coordinator().state().activeSession();
        auto text = localized("The agents no longer end this session.");
        if (session && session->endsAt)
            text = localized(
                "The agents no longer end this session. It ends at %1 at the latest.", {timeText(*session->endsAt)});
        return {.symbol = "power", .title = localized("Kept awake"), .text = text, .spoken = {}};
    }

    Notice waitingNotice()
    {
        return {.symbol = "hourglass",
            .title = localized("Waiting for agents"),
            .text = localized("The session ends once an agent has worked and all are done."),
            .spoken = {}};
    }

    bool isSomeWaiting(const AppModel& model)
    {
        return std::ranges::any_of(model.agents().sessions(),
            [](const auto& session) { return session.activity == AgentActivity::waitingForApproval; });
    }

} // namespace

std::optional<Notice> endNotice(const AppModel& model)
{
    const auto end = visibleGuardrailEnd(model);
    if (!end)
        return {};
    return Notice{
        .symbol = symbol(end->reason),
        .title = shortDescription(end->reason),
        .text = localized("Session ended at %1. %2", {timeText(end->date), notificationBody(end->reason)}),
        .spoken = {},
    };
}

std::optional<Notice> blockerNotice(const AppModel& model)
{
    const auto blocker = model.coordinator().state().isActive() ? std::nullopt : startBlocker(model);
    if (!blocker)
        return {};
    return Notice{.symbol = blocker->symbol, .title = blocker->text, .text = {}, .spoken = {}};
}

std::optional<Notice> connectNotice(const AppModel& model)
{
    if (model.coordinator().state().isActive() || !model.needsAgentConnection())
        return {};
    return Notice{
        .symbol = "terminal",
        .title = localized("Connect an agent first"),
        .text = localized("Claude Code or Codex reports through hooks when it is done."),
        .spoken = {},
    };
}

std::optional<Notice> heatNotice(const AppModel& model)
{
    if (!model.isRunningHot())
        return {};
    return Notice{
        .symbol = "thermometer.high",
        .title = localized("The Mac is running hot"),
        .text = localized("The session goes on. Closed-lid mode has to wait until it is cooler."),
        .spoken = {},
    };
}

std::optional<Notice> closedLidRefusalNotice(const AppModel& model)
{
    using Item = ClosedLidChecklist::Item;
    const auto& refusal = model.closedLidToggleRefusal();
    if (!refusal || !model.coordinator().state().isActive() || model.isClosedLidOn())
        return {};
    const bool isHeat = std::holds_alternative<refusal::TooHot>(*refusal);
    const auto checklist = model.coordinator().closedLidChecklist();
    if ((isHeat ? checklist.thermal : checklist.power) == Item::ok)
        return {};
    return Notice{.symbol = symbol(*refusal), .title = message(*refusal), .text = {}, .spoken = {}};
}

std::optional<Notice> agentPhaseNotice(const AppModel& model)
{
    const auto& condition = model.agentCondition();
    if (!condition)
        return {};
    return match(
        condition->phase(),
        [&](const phase::KeptAwake&) { return std::optional{keptAwakeNotice(model)}; },
        [](const phase::Finishing&) { return std::optional<Notice>{}; },
        [](const phase::Working&) { return std::optional<Notice>{}; },
        [](const phase::WaitingForAgents&) { return std::optional{waitingNotice()}; });
}

std::optional<std::string> commandLine(const AppModel& model)
{
    if (!model.coordinator().state().isActive() || !model.isCommandRunning())
        return {};
    return localized("Stays awake while a command is running.");
}

std::optional<Instant> finishingEnd(const AppModel& model)
{
    const auto& condition = model.agentCondition();
    if (!condition)
        return {};
    const auto phase = condition->phase();
    const auto* finishing = std::get_if<phase::Finishing>(&phase);
    return finishing ? std::optional{finishing->endsAt} : std::nullopt;
}

Notice finishingNotice(const AppModel& model, Instant end, Instant now)
{
    constexpr std::string_view text = "Ends in %1 unless an agent starts again.";
    const bool areDone = !isSomeWaiting(model);
    const auto title = areDone ? localized("Agents finished") : localized("No agent is working");
    return {
        .symbol = areDone ? "checkmark.circle.fill" : "hourglass",
        .title = title,
        .text = localized(text, {CountdownFormat::remaining(end - now)}),
        .spoken = title + ". " + localized(text, {spokenLeft(end - now)}),
    };
}

Notice forcedActionNotice(const AppModel& model, const ForcedEndAction::Pending& pending, Instant now)
{
    const auto left = CountdownFormat::remaining(pending.deadline - now);
    const auto finished = agentsFinishedTitle(model);
    const auto action = possible(model, pending.action);
    const auto spoken = notificationBody(action) + " " + finished;
    if (action == AgentEndAction::shutDown)
        return {
            .symbol = "power",
            .title = localized("The Mac will shut down in %1", {left}),
            .text = localized("%1. Save your work.", {finished}),
            .spoken = spoken,
        };
    return {
        .symbol = "moon", .title = localized("The Mac will sleep in %1", {left}), .text = finished, .spoken = spoken};
}

bool canStart(const AppModel& model)
{
    return !model.coordinator().refusal(model.preferences().options) && !model.needsAgentConnection();
}

} // namespace vespra::panelFacts
