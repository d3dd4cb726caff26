#include "Control/Command.h"
#include "Control/Doctor/DoctorReport.h"
#include "HelperProtocol/Brand.h"

#include <cstdio>
#include <memory>

namespace vespra::control {

namespace {

    int examine(bool asJSON)
    {
        const auto session = SessionMarker::read(SessionMarker::defaultPath());
        const doctor::Report report{.session = session, .facts = doctor::gatherFacts(session)};
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
