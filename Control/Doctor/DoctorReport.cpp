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

    std::string sentence(Verdict verdict, const Report& report, const std::string& application)
    {
        const auto process = report.session ? " (process " + std::to_string(report.session->pid) + ")" : "";
        switch (verdict) {
        case Verdict::noSession:
            return "No " + application + " session runs.";
        case Verdict::simulated:
            return "A " + application + " session runs" + process
                + " on a simulated laptop: it does not keep this machine awake.";
        case Verdict::listed:
            return "A " + application + " session runs" + process + ", and " + report.facts.listingService
                + " lists its lock.";
        case Verdict::missing:
            return "A " + application + " session runs" + process + ", but " + report.facts.listingService
                + " does NOT list its lock: this machine may fall asleep.";
        case Verdict::unknown:
            break;
        }
        return "A " + application + " session runs" + process + "; nothing here tells whether its lock is held.";
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

} // namespace

Verdict Report::verdict(const std::string& application) const
{
    if (!session)
        return Verdict::noSession;
    if (session->platform == "simulated")
        return Verdict::simulated;
    const auto& all = facts.inhibitors;
    if (!all || facts.listingService.empty())
        return Verdict::unknown;
    const bool isListed = std::ranges::any_of(*all, [&](const Inhibitor& each) {
        return each.service == facts.listingService && each.who == application && each.mode != "delay"
            && (each.pid == 0 || each.pid == session->pid);
    });
    return isListed ? Verdict::listed : Verdict::missing;
}

std::string text(const Report& report, const std::string& application)
{
    std::string text = sentence(report.verdict(application), report, application) + "\n\nFacilities\n";
    for (const auto& each : report.facts.facilities)
        text += "  " + each.name + ": " + each.mechanism.value_or("not available here")
            + (each.reading.empty() ? "" : " - " + each.reading) + "\n";
    text += "\nHeld right now\n";
    if (!report.facts.inhibitors)
        text += "  this system does not say\n";
    else if (report.facts.inhibitors->empty())
        text += "  nothing\n";
    else
        for (const auto& each : *report.facts.inhibitors)
            text += "  " + line(each) + "\n";
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
    if (report.facts.inhibitors) {
        json["inhibitors"] = JSON::array();
        for (const auto& each : *report.facts.inhibitors)
            json["inhibitors"].push_back(inhibitorJSON(each));
    }
    json["threats"] = report.facts.threats;
    return json.dump(2, ' ', false, JSON::error_handler_t::replace) + "\n";
}

} // namespace vespra::doctor
