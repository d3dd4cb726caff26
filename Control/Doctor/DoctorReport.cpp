#include "Control/Doctor/DoctorReport.h"

#include "Core/Coding/JSON.h"
#include "Core/RawValue.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace vespra {

template <>
inline constexpr auto rawValues<doctor::Verdict> = RawValueTable<doctor::Verdict, 5>{{
    {doctor::Verdict::noSession, "noSession"},
    {doctor::Verdict::simulated, "simulated"},
    {doctor::Verdict::listed, "listed"},
    {doctor::Verdict::missing, "missing"},
    {doctor::Verdict::unknown, "unknown"},
}};

} // namespace vespra

namespace vespra::doctor {

namespace {

    std::string clause(const Keeper& keeper, Verdict verdict)
    {
        if (verdict == Verdict::listed)
            return keeper.service + " lists its lock";
        if (verdict == Verdict::missing)
            return keeper.service + " does NOT list its lock: this machine may fall asleep";
        return "whether " + keeper.service + " holds its lock cannot be told";
    }

    std::string sentence(const Report& report, const std::string& application)
    {
        if (!report.session)
            return "No " + application + " session runs.";
        auto text = "A " + application + " session runs (process " + std::to_string(report.session->pid) + ")";
        if (report.verdict(application) == Verdict::simulated)
            return text + " on a simulated laptop: it does not keep this machine awake.";
        for (const auto& keeper : report.facts.keepers)
            text += "; " + clause(keeper, report.verdict(keeper, application));
        if (report.facts.keepers.empty())
            text += "; nothing here tells whether its lock is held";
        return text + ".";
    }

    std::string line(const Inhibitor& each)
    {
        std::string text = each.service + "  " + each.what;
        if (!each.mode.empty())
            text += " (" + each.mode + ")";
        text += "  " + each.who + ": " + each.why;
        if (each.pid != 0)
            text += "  [" + (each.process.empty() ? "process" : each.process) + " " + std::to_string(each.pid)
                + (each.uid ? ", user " + std::to_string(*each.uid) : "") + "]";
        return text;
    }

    JSON inhibitorJSON(const Inhibitor& each)
    {
        JSON json{{"service", each.service}, {"what", each.what}, {"who", each.who}, {"why", each.why}};
        if (!each.mode.empty())
            json["mode"] = each.mode;
        if (each.pid != 0)
            json["pid"] = each.pid;
        if (each.uid)
            json["uid"] = *each.uid;
        if (!each.process.empty())
            json["process"] = each.process;
        return json;
    }

    std::string evidenceText(const std::string& evidence)
    {
        if (evidence == "statusFile")
            return "its own status file";
        return evidence == "transcript" ? "its transcript" : "hooks only";
    }

    std::string line(const Agent& agent)
    {
        const auto activity = agent.activity == "waitingForApproval" ? "waiting for approval" : agent.activity;
        return agent.id + (agent.folder.empty() ? "" : " in " + agent.folder) + ": " + activity + " since "
            + agent.since + ", by " + evidenceText(agent.evidence);
    }

    std::string agentsText(const std::optional<std::vector<Agent>>& agents)
    {
        std::string text = "\nAgents\n";
        if (!agents)
            return text + "  unknown: the application does not answer\n";
        for (const auto& agent : *agents)
            text += "  " + line(agent) + "\n";
        return agents->empty() ? text + "  none\n" : text;
    }

    JSON agentJSON(const Agent& agent)
    {
        return {{"id", agent.id},
            {"folder", agent.folder},
            {"activity", agent.activity},
            {"since", agent.since},
            {"evidence", agent.evidence}};
    }

} // namespace

bool Inhibitor::covers(std::string_view one) const
{
    return (":" + what + ":").find(":" + std::string{one} + ":") != std::string::npos;
}

Verdict Report::verdict(const Keeper& keeper, const std::string& application) const
{
    const bool isListed = std::ranges::any_of(facts.inhibitors, [&](const Inhibitor& each) {
        const bool isOurs = each.pid != 0 ? each.pid == session->pid : each.who == application;
        return isOurs && each.service == keeper.service && each.mode != "delay" && each.covers(keeper.what);
    });
    return isListed ? Verdict::listed : keeper.tellsAll ? Verdict::missing : Verdict::unknown;
}

Verdict Report::verdict(const std::string& application) const
{
    if (!session)
        return Verdict::noSession;
    if (session->platform == "simulated")
        return Verdict::simulated;
    const auto says = [&](Verdict one) {
        return std::ranges::any_of(
            facts.keepers, [&](const Keeper& keeper) { return verdict(keeper, application) == one; });
    };
    if (says(Verdict::missing))
        return Verdict::missing;
    return facts.keepers.empty() || says(Verdict::unknown) ? Verdict::unknown : Verdict::listed;
}

std::string text(const Report& report, const std::string& application)
{
    std::string text = sentence(report, application) + "\n\nFacilities\n";
    for (const auto& each : report.facts.facilities)
        text += "  " + each.name + ": " + each.mechanism.value_or("not available here")
            + (each.reading.empty() ? "" : " - " + each.reading) + "\n";
    text += "\nHeld right now\n";
    for (const auto& each : report.facts.inhibitors)
        text += "  " + line(each) + "\n";
    const auto tellsAll = [](const Keeper& keeper) { return keeper.tellsAll; };
    if (report.facts.inhibitors.empty() && std::ranges::all_of(report.facts.keepers, tellsAll))
        text += "  nothing\n";
    for (const auto& each : report.facts.keepers) {
        const auto isKnown = [&](const Inhibitor& held) { return held.service == each.service; };
        if (!each.tellsAll && std::ranges::none_of(report.facts.inhibitors, isKnown))
            text += "  " + each.service + " does not answer\n";
    }
    if (report.session || report.agents)
        text += agentsText(report.agents);
    text += "\nWhat could defeat a session\n";
    for (const auto& each : report.facts.threats)
        text += "  " + each + "\n";
    return text;
}

std::string json(const Report& report, const std::string& application)
{
    JSON json{{"verdict", rawValue(report.verdict(application))}};
    if (report.session)
        json["session"] = {{"pid", report.session->pid}, {"platform", report.session->platform}};
    json["facilities"] = JSON::array();
    for (const auto& each : report.facts.facilities) {
        JSON facility{{"name", each.name}, {"isAvailable", each.mechanism.has_value()}};
        if (each.mechanism)
            facility["mechanism"] = *each.mechanism;
        if (!each.reading.empty())
            facility["reading"] = each.reading;
        json["facilities"].push_back(facility);
    }
    json["inhibitors"] = JSON::array();
    for (const auto& each : report.facts.inhibitors)
        json["inhibitors"].push_back(inhibitorJSON(each));
    json["services"] = JSON::array();
    for (const auto& each : report.facts.keepers) {
        JSON service{{"name", each.service}, {"isSilent", !each.tellsAll}};
        if (report.session)
            service["verdict"] = rawValue(report.verdict(each, application));
        json["services"].push_back(service);
    }
    if (report.agents) {
        json["agents"] = JSON::array();
        for (const auto& agent : *report.agents)
            json["agents"].push_back(agentJSON(agent));
    }
    json["threats"] = report.facts.threats;
    return json.dump(2, ' ', false, JSON::error_handler_t::replace) + "\n";
}

} // namespace vespra::doctor
