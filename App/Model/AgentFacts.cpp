#include "App/Model/AgentFacts.h"

#include "App/Model/AppModel.h"
#include "App/Wording/AgentWording.h"
#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"

namespace vespra::panelFacts {

namespace {

    /// What happened less long ago happened now.
    constexpr Seconds present = 5s;

    std::string text(AgentStatus status)
    {
        switch (status) {
        case AgentStatus::working:
            return localized("Working");
        case AgentStatus::waitingForApproval:
            return localized("Waiting for approval");
        case AgentStatus::finished:
            return localized("Finished");
        case AgentStatus::idle:
            break;
        }
        return localized("Idle");
    }

    /// What keeps `action` from being done as it is named.
    std::string obstacle(const AppModel& model, AgentEndAction action)
    {
        if (model.isCommandRunning())
            return localized("Not while a command is running.");
        if (action == AgentEndAction::shutDown && !isReady(model.coordinator().conditions().helper))
            return localized(
                "Shutting down needs the closed-lid component. Without it, the Mac will go to sleep instead.");
        return {};
    }

} // namespace

std::string_view glyph(AgentKind kind)
{
    switch (kind) {
    case AgentKind::claudeCode:
        return "CC";
    case AgentKind::codex:
        break;
    }
    return "CX";
}

AgentStatus agentStatus(const AgentSession& session)
{
    switch (session.activity) {
    case AgentActivity::working:
        return AgentStatus::working;
    case AgentActivity::waitingForApproval:
        return AgentStatus::waitingForApproval;
    case AgentActivity::idle:
        break;
    }
    return session.hasWorked ? AgentStatus::finished : AgentStatus::idle;
}

std::string sinceText(Seconds elapsed)
{
    if (elapsed < present)
        return localized("now");
    if (elapsed < 1min)
        return localized("%1s", {std::to_string(static_cast<int>(elapsed.count()))});
    return Format::current().briefDuration(elapsed);
}

Seconds sinceStep(Seconds elapsed) { return elapsed < 1min ? Seconds{1s} : Seconds{1min}; }

AgentLine agentLine(const AgentSession& session, Instant now)
{
    const std::string agent{displayName(session.agent)};
    const auto folder = session.folderName();
    const auto since = sinceText(now - session.activitySince);
    const auto status = agentStatus(session);
    return {
        .glyph = glyph(session.agent),
        .name = folder.value_or(agent),
        .detail = folder ? agent + " · " + since : since,
        .status = status,
        .activity = text(status),
    };
}

bool showsAgents(const AppModel& model)
{
    const auto* session = model.coordinator().state().activeSession();
    const auto mode = session ? session->mode() : model.preferences().mode;
    return mode == SessionMode::agent && !model.agents().sessions().empty();
}

std::optional<EndAction> endAction(const AppModel& model)
{
    const auto& condition = model.agentCondition();
    const auto action = model.coordinator().settings().agents.endAction;
    if (!condition || action == AgentEndAction::letSleep
        || std::holds_alternative<phase::KeptAwake>(condition->phase()))
        return {};
    return EndAction{
        .name = title(action),
        .detail = obstacle(model, action),
        .isSkipped = model.skipsForcedActionThisSession(),
    };
}

} // namespace vespra::panelFacts
