#include "Control/Command.h"
#include "Control/Doctor/DoctorReport.h"
#include "ControlProtocol/ControlClient.h"
#include "Core/Coding/DisplayText.h"
#include "HelperProtocol/Brand.h"

#include <csignal>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace vespra::control {

namespace {

    std::string text(const JSON& object, const char* key)
    {
        const auto found = object.find(key);
        return found != object.end() && found->is_string() ? found->get<std::string>() : "";
    }

    doctor::Agent agent(const JSON& json)
    {
        return {.id = displayText(text(json, "id")),
            .folder = displayText(text(json, "cwd")),
            .activity = text(json, "activity"),
            .since = text(json, "since"),
            .evidence = text(json, "evidence")};
    }

    /// As the running application tells; the machine is examined also without one.
    std::optional<std::vector<doctor::Agent>> askForAgents()
    {
        std::signal(SIGPIPE, SIG_IGN);
        ControlClient client;
        const bool isAsked = client.connect() && client.send({.verb = ControlVerb::status});
        const auto reply = isAsked ? client.receive() : std::nullopt;
        if (!reply || !reply->is_object() || !reply->contains("status"))
            return {};
        std::vector<doctor::Agent> agents;
        for (const auto& each : reply->at("status").value("agents", JSON::array()))
            agents.push_back(agent(each));
        return agents;
    }

    int examine(bool asJSON)
    {
        const auto session = SessionMarker::read(SessionMarker::defaultPath());
        const doctor::Report report{
            .session = session, .facts = doctor::gatherFacts(session), .agents = askForAgents()};
        const auto& application = Brand::appName();
        std::fputs((asJSON ? doctor::json(report, application) : doctor::text(report, application)).c_str(), stdout);
        return report.verdict(application) == doctor::Verdict::missing ? failed : done;
    }

} // namespace

void addDoctorCommand(CLI::App& vespractl, int& exitStatus)
{
    auto* command = vespractl.add_subcommand("doctor",
        "Says what keeps this machine awake right now and what could defeat it; fails if a session runs and its lock "
        "is not there");
    const auto asJSON = std::make_shared<bool>(false);
    command->add_flag("--json", *asJSON, "As JSON");
    command->callback([asJSON, &exitStatus] { exitStatus = examine(*asJSON); });
}

} // namespace vespra::control
