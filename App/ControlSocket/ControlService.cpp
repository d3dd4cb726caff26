#include "App/ControlSocket/ControlService.h"

#include "App/Model/AppModel.h"
#include "App/Model/ModelSettings.h"
#include "App/System/ClosedLidController.h"
#include "App/Wording/AgentWording.h"
#include "App/Wording/ClosedLidWording.h"
#include "App/Wording/Format.h"
#include "App/Wording/Localized.h"
#include "App/Wording/SessionReport.h"
#include "App/Wording/SessionWording.h"
#include "ControlProtocol/SnapshotJSON.h"
#include "HelperProtocol/Brand.h"

#include <nlohmann/json.hpp>

namespace vespra {

namespace {

    JSON dateJSON(Instant instant) { return instant.iso8601(); }

    JSON powerJSON(const PowerSnapshot& power)
    {
        return {
            {"isOnACPower", power.isOnACPower},
            {"batteryLevel", power.batteryLevel ? JSON(*power.batteryLevel) : JSON{}},
        };
    }

    JSON connectionsJSON(const AgentIntegration::Connections& connections)
    {
        auto json = JSON::object();
        for (const auto& [agent, connection] : connections)
            json[std::string{rawValue(agent)}] = rawValue(connection);
        return json;
    }

    /// To the agents of a snapshot, which are the tracker's, in its order.
    void addAgentDetails(JSON& agents, const AppModel& model)
    {
        const auto& sessions = model.agents().sessions();
        for (std::size_t i = 0; i < sessions.size(); ++i) {
            agents[i]["since"] = dateJSON(sessions[i].activitySince);
            agents[i]["hasWorked"] = sessions[i].hasWorked;
            agents[i]["evidence"] = rawValue(model.agentWatch().evidence(sessions[i].id));
        }
    }

    JSON pendingActionJSON(const std::optional<ForcedEndAction::Pending>& pending)
    {
        if (!pending)
            return {};
        return {{"action", rawValue(pending->action)}, {"deadline", dateJSON(pending->deadline)}};
    }

    std::string sessionLine(const AppModel& model)
    {
        const auto& coordinator = model.coordinator();
        if (const auto* session = coordinator.state().activeSession())
            return startLine(*session) + " " + standingLine(*session, coordinator.now(), model.agentCondition().get());
        const auto end = coordinator.state().lastEnd();
        if (!end)
            return localized("No session is running.");
        return localized("No session is running. The last one ended at %1: %2.",
            {timeText(end->date), shortDescription(end->reason)});
    }

    /// Warns that the laptop is simulated; empty on a real one.
    std::string simulationLine(const AppModel& model)
    {
        return model.platformKind() == PlatformKind::simulated
            ? localized("This laptop is simulated: nothing keeps the real one awake.")
            : "";
    }

    std::string checkText(const std::string& name, ClosedLidChecklist::Item item)
    {
        switch (item) {
        case ClosedLidChecklist::Item::ok:
            return localized("%1 OK", {name});
        case ClosedLidChecklist::Item::pending:
            return localized("%1 pending", {name});
        case ClosedLidChecklist::Item::failed:
            break;
        }
        return localized("%1 not OK", {name});
    }

    std::string closedLidLine(const AppModel& model)
    {
        const auto& coordinator = model.coordinator();
        const auto checklist = coordinator.closedLidChecklist();
        return localized("Closed lid: %1", {message(coordinator.closedLidStatus(model.isClosedLidOn()))})
            + localized(" (%1, %2, %3, %4)",
                {checkText(localized("component"), checklist.helper),
                    checkText(localized("power"), checklist.power),
                    checkText(localized("heat"), checklist.thermal),
                    checkText(localized("session"), checklist.session)});
    }

} // namespace

JSON ControlService::reply(const ControlRequest& request)
{
    switch (request.verb) {
    case ControlVerb::describe:
        return describe();
    case ControlVerb::start:
        return start(request.start.applied(model_.preferences()));
    case ControlVerb::stop:
        model_.coordinator().stop(end::StoppedByUser{});
        return done();
    case ControlVerb::toggle:
        return toggle();
    case ControlVerb::extend:
        return extend();
    case ControlVerb::keepAwake:
        return keepAwake();
    case ControlVerb::cancel:
        model_.forcedEndAction().cancel();
        return done();
    case ControlVerb::display:
        model_.setKeepsDisplayAwake(request.on);
        return kept();
    case ControlVerb::closedLid:
        return setClosedLid(request.on);
    case ControlVerb::setUpClosedLid:
        model_.closedLid()->install();
        return done();
    case ControlVerb::removeClosedLid:
        model_.closedLid()->remove();
        return done();
    case ControlVerb::settings:
        return settings();
    case ControlVerb::set:
        return set(request.key, request.value);
    case ControlVerb::showPanel:
        readConnections();
        notify(model_.showPanel);
        return done();
    case ControlVerb::status:
    case ControlVerb::run:
    case ControlVerb::watch:
    case ControlVerb::wait:
        break;
    }
    readConnections();
    return status();
}

bool ControlService::tellsClosedLid(const ControlRequest& request) const
{
    const auto* session = model_.coordinator().state().activeSession();
    switch (request.verb) {
    case ControlVerb::start:
    case ControlVerb::toggle:
    case ControlVerb::run:
        return session && session->options.closedLid;
    case ControlVerb::closedLid:
        return request.on;
    case ControlVerb::setUpClosedLid:
    case ControlVerb::removeClosedLid:
        return true;
    default:
        return false;
    }
}

bool ControlService::isClosedLidSettling(const ControlRequest& request) const
{
    const auto status = model_.coordinator().closedLidStatus(model_.isClosedLidOn());
    return model_.closedLid()->isSettling()
        || (request.verb != ControlVerb::removeClosedLid && std::holds_alternative<closedLid::Verifying>(status));
}

JSON ControlService::withClosedLid(const ControlRequest& request, JSON reply) const
{
    const auto& component = model_.coordinator().conditions().helper;
    const bool isGone = std::holds_alternative<helper::NotInstalled>(component);
    if (request.verb == ControlVerb::removeClosedLid)
        return isGone
            ? reply
            : error(controlProtocol::refused,
                  localized("The component is still there. What a package has brought goes with the package."));
    const bool isSetUp = request.verb == ControlVerb::setUpClosedLid && isReady(component);
    const auto status = model_.coordinator().closedLidStatus(model_.isClosedLidOn());
    using namespace closedLid;
    if (isSetUp || !reply.contains("done") || std::holds_alternative<Off>(status)
        || std::holds_alternative<Ready>(status) || std::holds_alternative<CanCloseLid>(status))
        return reply;
    reply["done"]["closedLid"] = {
        {"message", localized("Closed lid: %1", {message(status)})},
        {"isPossible", std::holds_alternative<Verifying>(status)},
    };
    return reply;
}

JSON ControlService::status() const
{
    const auto& coordinator = model_.coordinator();
    auto json = snapshotJSON(coordinator,
        {
            .closedLidRequested = model_.isClosedLidOn(),
            .deadline = coordinator.pendingDeadline(),
            .condition = model_.agentCondition().get(),
            .tracker = model_.agents(),
        },
        dateJSON);
    const auto& conditions = coordinator.conditions();
    addAgentDetails(json["agents"], model_);
    json["settings"] = toJSON(coordinator.settings());
    json["preferences"] = toJSON(model_.preferences());
    json["power"] = powerJSON(conditions.power);
    json["thermal"] = rawValue(conditions.thermal);
    json["helper"] = helperStatusJSON(conditions.helper);
    json["connections"] = connectionsJSON(model_.agentIntegration().connections());
    json["pendingAction"] = pendingActionJSON(model_.forcedEndAction().pending());
    json["platform"] = rawValue(model_.platformKind());
    return {{"status", std::move(json)}};
}

std::optional<JSON> ControlService::ended() const
{
    const auto& state = model_.coordinator().state();
    if (state.isActive())
        return {};
    auto json = JSON::object();
    if (const auto end = state.lastEnd()) {
        json = endReasonJSON(end->reason);
        json["at"] = dateJSON(end->date);
        json["message"] = notificationTitle(end->reason);
    }
    return JSON{{"ended", std::move(json)}};
}

JSON ControlService::error(std::string_view kind, const std::string& message)
{
    return {{"error", {{"kind", kind}, {"message", message}}}};
}

JSON ControlService::done(const std::string& message) const
{
    JSON json{{"isActive", model_.coordinator().state().isActive()}};
    if (!message.empty())
        json["message"] = message;
    return {{"done", std::move(json)}};
}

JSON ControlService::kept() const
{
    if (const auto* store = model_.store(); !store || store->isStored())
        return done();
    return error(controlProtocol::notStored,
        localized("This counts until %1 quits, but it could not be saved.", {Brand::appName()}));
}

JSON ControlService::refusal(const SessionPreferences& preferences) const
{
    if (const auto refused = model_.coordinator().refusal(preferences.options))
        return error(controlProtocol::refused, message(*refused));
    return error(
        controlProtocol::refused, localized("No agent is connected. \"vespractl hooks connect\" connects one."));
}

/// An agent may have been connected from a terminal in the meantime. Only for what asks about connections: parsing
/// large settings files takes tens of milliseconds.
void ControlService::readConnections() const { model_.agentIntegration().refresh(); }

JSON ControlService::start(const SessionPreferences& preferences)
{
    if (model_.coordinator().state().isActive())
        return refusal(preferences);
    if (preferences.mode == SessionMode::agent)
        readConnections();
    model_.start(preferences);
    const auto* session = model_.coordinator().state().activeSession();
    return session ? started() : refusal(preferences);
}

JSON ControlService::started() const
{
    const auto simulation = simulationLine(model_);
    return done(
        startLine(*model_.coordinator().state().activeSession()) + (simulation.empty() ? "" : "\n" + simulation));
}

JSON ControlService::toggle()
{
    const bool wasActive = model_.coordinator().state().isActive();
    if (!wasActive && model_.preferences().mode == SessionMode::agent)
        readConnections();
    model_.toggleSession();
    const auto* session = model_.coordinator().state().activeSession();
    if (session)
        return started();
    return wasActive ? done() : refusal(model_.preferences());
}

JSON ControlService::extend()
{
    if (!model_.coordinator().canExtend())
        return error(controlProtocol::refused, localized("There is no session that can be extended."));
    model_.coordinator().extend();
    return done(startLine(*model_.coordinator().state().activeSession()));
}

JSON ControlService::keepAwake()
{
    if (!model_.agentCondition())
        return error(controlProtocol::refused, localized("There is no agent session."));
    model_.agentCondition()->keepAwake();
    return done();
}

JSON ControlService::setClosedLid(bool on)
{
    model_.setClosedLid(on);
    if (const auto& refused = model_.closedLidToggleRefusal())
        return error(controlProtocol::refused, message(*refused));
    return kept();
}

JSON ControlService::settings() const
{
    auto json = JSON::object();
    for (const auto& [key, text] : settingTexts::all(settingsOf(model_)))
        json[key] = text;
    return {{"settings", std::move(json)}};
}

JSON ControlService::set(const std::string& key, const std::string& value)
{
    const auto change = settingTexts::change(key, value);
    if (!change)
        return error(controlProtocol::badRequest, change.error());
    changeSetting(model_, *change);
    return kept();
}

JSON ControlService::describe() const
{
    JSON lines{sessionLine(model_)};
    for (const auto& agent : model_.agents().sessions())
        lines.push_back(sinceLine(agent));
    lines.push_back(closedLidLine(model_));
    if (const auto& pending = model_.forcedEndAction().pending())
        lines.push_back(notificationBody(pending->action));
    if (const auto simulation = simulationLine(model_); !simulation.empty())
        lines.push_back(simulation);
    return {{"lines", std::move(lines)}};
}

} // namespace vespra
